// One column of a list, read once for a sort by it.
#pragma once

#include "frame/column_reader.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// What a comparison needs to know of the texts of a column, under the item data of their rows. The platform hands
/// a comparison two item data; to find both rows again and to read both texts each time would make the sort
/// quadratic.
template <class Key>
class ColumnKeys {
public:
    /// Reads the column.
    /// @param makeKey  gives the key of a text, which lasts as long as this object.
    template <class MakeKey>
    ColumnKeys(const CListCtrl& list, int column, MakeKey makeKey)
        : m_reader(list, column)
    {
        const int rows = list.rowCount();
        // Four in five at most: the smaller the table, the more of it stays in the processor's caches.
        m_slots.resize(std::bit_ceil(static_cast<std::size_t>(rows) * 5 / 4 + 2));
        for (int row = 0; row < rows; ++row) {
            LPARAM data = 0;
            const wchar_t* text = m_reader.read(row, data);
            Slot& slot = m_slots[slotOf(data)];
            if (slot.state != State::free) {
                continue; // two rows with the same item data: the first stands for both, as it is the one found
            }
            slot.data = data;
            slot.state = State::unreadable;
            if (text != nullptr) {
                slot.key = makeKey(text);
                slot.state = State::readable;
            }
        }
    }

    ColumnKeys(const ColumnKeys&) = delete; // keys point into the texts
    ColumnKeys& operator=(const ColumnKeys&) = delete;

    /// The key of the row with an item data; null when reading the row's text raised a fault.
    const Key* of(LPARAM data) const
    {
        const Slot& slot = m_slots[slotOf(data)];
        return slot.state == State::readable ? &slot.key : nullptr;
    }

private:
    enum class State : unsigned char { free, unreadable, readable };

    /// A row under its item data, in the table itself and as small as can be: a comparison touches one place per
    /// row.
    struct Slot {
        LPARAM data = 0;
        Key key{};
        State state = State::free;
    };

    // The slot that holds an item data, or the free one where it belongs.
    std::size_t slotOf(LPARAM data) const
    {
        const std::size_t mask = m_slots.size() - 1;
        // Item data are mostly addresses, alike in their low and in their high bits.
        const std::uint64_t hash = static_cast<std::uint64_t>(data) * 0x9E3779B97F4A7C15u;
        std::size_t slot = (hash >> 32) & mask;
        while (m_slots[slot].state != State::free && m_slots[slot].data != data) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    ColumnReader m_reader;
    std::vector<Slot> m_slots;
};
