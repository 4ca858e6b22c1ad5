// Values under the item data of rows.
#pragma once

#include "frame/platform.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A hash table as small as can be: a comparison of rows touches one place per row, and the smaller the table, the
/// more of it stays in the processor's caches.
/// @tparam Value  has a member `taken`, false in one that was made without arguments, true in those that are put in.
template <class Value>
class DataTable {
public:
    /// @param rows  that will be put in at most.
    explicit DataTable(std::size_t rows)
        : m_slots(std::bit_ceil(rows * 5 / 4 + 2)) // four in five are taken at most
    {
    }

    /// Puts in the value of a row. Of rows with the same item data the first stands for all: it is the one that a
    /// search finds. @return whether it was the first.
    bool add(LPARAM data, const Value& value)
    {
        Slot& slot = m_slots[slotOf(data)];
        if (slot.value.taken) {
            return false;
        }
        slot = {data, value};
        return true;
    }

    /// @return the value of a row; of one that was not put in, a value made without arguments.
    const Value& of(LPARAM data) const { return m_slots[slotOf(data)].value; }

private:
    struct Slot {
        LPARAM data = 0;
        Value value{};
    };

    // The slot that holds an item data, or the free one where it belongs.
    std::size_t slotOf(LPARAM data) const
    {
        const std::size_t mask = m_slots.size() - 1;
        // Item data are mostly addresses, alike in their low and in their high bits.
        const std::uint64_t hash = static_cast<std::uint64_t>(data) * 0x9E3779B97F4A7C15u;
        std::size_t slot = (hash >> 32) & mask;
        while (m_slots[slot].value.taken && m_slots[slot].data != data) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    std::vector<Slot> m_slots;
};
