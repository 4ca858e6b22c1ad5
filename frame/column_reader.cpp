#include "frame/column_reader.h"

#include "frame/crash_guard.h"

#include <cwchar>

ColumnReader::ColumnReader(const CListCtrl& list, int column)
    : m_list(list)
    , m_column(column)
    , m_together(givesDataWithCells())
{
}

// Whether one message can fetch item data and text together: of a large list the messages cost more than anything
// else. For cells of the first column that is documented, for the others the control is tried.
bool ColumnReader::givesDataWithCells() const
{
    if (m_column == 0 || m_list.rowCount() == 0) {
        return true;
    }
    const LPARAM first = m_list.data(0);
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iSubItem = m_column;
    item.lParam = ~first;
    return first != 0 && m_list.send(LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)) != 0 &&
           item.lParam == first;
}

const wchar_t* ColumnReader::read(int row, LPARAM& data)
{
    if (!m_together) {
        data = m_list.data(row);
    }
    const wchar_t* text = nullptr;
    const bool done = runGuarded([&] { text = readCell(row, data); });
    if (!done && m_together) {
        data = m_list.data(row); // the text was at fault
    }
    return text;
}

const wchar_t* ColumnReader::readCell(int row, LPARAM& data)
{
    LVITEMW item{};
    item.mask = m_together ? LVIF_TEXT | LVIF_PARAM : LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = m_column;
    wchar_t* const text = room();
    item.pszText = text;
    item.cchTextMax = static_cast<int>(kRoom);
    m_list.send(LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    if (m_together) {
        data = item.lParam;
    }
    // A full room may mean a longer text, and a control may also leave its text where it is.
    const std::size_t length = item.pszText == text ? wcsnlen(text, kRoom) : kRoom;
    if (length + 1 >= kRoom) {
        return m_longTexts.emplace_back(m_list.text(row, m_column)).c_str();
    }
    m_used += length + 1;
    return text;
}

wchar_t* ColumnReader::room()
{
    if (m_used + kRoom > kBlock) {
        m_blocks.push_back(std::make_unique<wchar_t[]>(kBlock));
        m_used = 0;
    }
    wchar_t* const text = m_blocks.back().get() + m_used;
    *text = L'\0'; // what a row that is not there gives
    return text;
}
