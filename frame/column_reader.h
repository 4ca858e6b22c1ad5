// All rows of a list by one column, read once: for showing them elsewhere, or for a sort by it.
#pragma once

#include "frame/data_table.h"
#include "frame/list_ctrl.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <vector>

/// Reads item data and the text of one column, row by row, and keeps the texts.
class ColumnReader {
public:
    ColumnReader(const CListCtrl& list, int column);

    /// @param data  receives the row's item data.
    /// @return the row's text, as long as this object; null when reading it raised a fault.
    const wchar_t* read(int row, LPARAM& data);

private:
    bool givesDataWithCells() const;
    const wchar_t* readCell(int row, LPARAM& data);
    wchar_t* room();

    // Characters offered to a text. Longer ones are rare and read again.
    static constexpr std::size_t kRoom = 260;
    static constexpr std::size_t kBlock = 65536;

    const CListCtrl& m_list;
    int m_column;
    bool m_together;
    std::vector<std::unique_ptr<wchar_t[]>> m_blocks;
    std::size_t m_used = kBlock; ///< characters of the last block
    std::deque<std::wstring> m_longTexts;
};

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
        , m_entries(static_cast<std::size_t>(list.rowCount()))
    {
        const int rows = list.rowCount();
        for (int row = 0; row < rows; ++row) {
            LPARAM data = 0;
            const wchar_t* text = m_reader.read(row, data);
            m_entries.add(data, text != nullptr ? Entry{makeKey(text), true, true} : Entry{{}, true, false});
        }
    }

    ColumnKeys(const ColumnKeys&) = delete; // keys point into the texts
    ColumnKeys& operator=(const ColumnKeys&) = delete;

    /// The key of the row with an item data; null when reading the row's text raised a fault.
    const Key* of(LPARAM data) const
    {
        const Entry& entry = m_entries.of(data);
        return entry.readable ? &entry.key : nullptr;
    }

private:
    struct Entry {
        Key key{};
        bool taken = false;
        bool readable = false;
    };

    ColumnReader m_reader;
    DataTable<Entry> m_entries;
};
