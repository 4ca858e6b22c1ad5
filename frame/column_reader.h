// All rows of a list by one column, read once.
#pragma once

#include "frame/list_ctrl.h"

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
