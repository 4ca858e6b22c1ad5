// Rules in groups, found by a hash.
#pragma once

#include "corvane_types.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Groups of rules that share a hash. A rule costs a few bytes in two blocks and no allocation of its own.
class RuleGroups {
public:
    /// Makes room for as many rules in groups of their own.
    void reserve(std::size_t rules);

    /// Puts a rule on top of its group. @return how many rules the group has now.
    std::uint32_t addOnTop(std::uint64_t hash, QuotaRule& rule);

    /// How many rules share a hash.
    std::uint32_t size(std::uint64_t hash) const { return m_slots[slotOf(hash)].count; }

    /// Whether any rule of a group meets a condition; they are asked from the top, until one does.
    template <class Condition>
    bool any(std::uint64_t hash, Condition condition) const
    {
        for (std::uint32_t at = m_slots[slotOf(hash)].top; at != kNone; at = m_entries[at].below) {
            if (condition(*m_entries[at].rule)) {
                return true;
            }
        }
        return false;
    }

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;

    struct Entry {
        QuotaRule* rule;
        std::uint32_t below; ///< the next entry of the same group
    };
    struct Slot {
        std::uint64_t hash = 0;
        std::uint32_t top = kNone; ///< none: the slot is free
        std::uint32_t count = 0;
    };

    std::size_t slotOf(std::uint64_t hash) const;
    void grow();

    std::vector<Entry> m_entries;
    std::vector<Slot> m_slots = std::vector<Slot>(64); ///< a power of two, at most half of them taken
    std::size_t m_groups = 0;
};
