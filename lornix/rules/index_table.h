// An open hash table of indices. What stands under an index lies elsewhere, and tells whether it is what is looked for.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace lornix {

class IndexTable {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    /// How many may be entered.
    std::size_t room() const { return m_slots.size() / 2; }

    /// Empties it, and makes room for so many.
    void reset(std::size_t room)
    {
        constexpr std::size_t kLeast = 16;
        const std::size_t count = std::max(kLeast, std::bit_ceil(room * 2));
        if (m_slots.capacity() < count) {
            m_slots = {}; // gone before there are more
        }
        m_slots.assign(count, kNone);
    }

    /// @param is  whether an index is the one that is looked for; its hash need not be this one.
    /// @return kNone when none is.
    template <class Is>
    std::uint32_t find(std::uint64_t hash, Is is) const
    {
        for (std::size_t i = hash; !m_slots.empty(); ++i) {
            const std::uint32_t index = m_slots[i & (m_slots.size() - 1)];
            if (index == kNone || is(index)) {
                return index;
            }
        }
        return kNone;
    }

    void enter(std::uint64_t hash, std::uint32_t index)
    {
        std::size_t i = hash;
        while (m_slots[i & (m_slots.size() - 1)] != kNone) {
            ++i;
        }
        m_slots[i & (m_slots.size() - 1)] = index;
    }

private:
    std::vector<std::uint32_t> m_slots;
};

} // namespace lornix
