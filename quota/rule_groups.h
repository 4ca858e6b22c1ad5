// Rules in groups, found by a hash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Groups of rules that share a hash; a rule is a number that its owner gives it. It costs a few bytes in two blocks and
/// no allocation of its own.
class RuleGroups {
public:
    static constexpr std::uint32_t kNone = UINT32_MAX;

    /// Makes room for as many rules in groups of their own.
    void reserve(std::size_t rules);

    /// Puts a rule on top of its group. @return how many rules the group has now.
    std::uint32_t addOnTop(std::uint32_t hash, std::uint32_t rule);

    /// How many rules share a hash.
    std::uint32_t size(std::uint32_t hash) const
    {
        const std::uint32_t top = m_slots[slotOf(hash)].top;
        return top == kNone ? 0 : m_entries[top].height;
    }

    /// The first rule of a group that meets a condition, or kNone; they are asked from the top, until one does.
    template <class Condition>
    std::uint32_t find(std::uint32_t hash, Condition condition) const
    {
        for (std::uint32_t at = m_slots[slotOf(hash)].top; at != kNone; at = m_entries[at].below) {
            if (condition(m_entries[at].rule)) {
                return m_entries[at].rule;
            }
        }
        return kNone;
    }

private:
    struct Entry {
        std::uint32_t rule;
        std::uint32_t below;  ///< the next entry of the same group
        std::uint32_t height; ///< how many the group has from here down
    };
    /// Small, so that those of 100,000 rules stay near the processor: looking for one is most of the work.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t top = kNone; ///< none: the slot is free
    };

    std::size_t slotOf(std::uint32_t hash) const;
    void makeSlots(std::size_t count);

    std::vector<Entry> m_entries;
    std::vector<Slot> m_slots = std::vector<Slot>(64); ///< a power of two, at most half of them taken
    std::size_t m_groups = 0;
};
