#include "tests/support/list_view.h"

#include "tests/support/text.h"

#include <gtest/gtest.h>

#include <stdexcept>

std::wstring ListView::cell(int row, int column) const
{
    std::wstring text(20000, L'\0');
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = static_cast<int>(text.size());
    const LRESULT length =
        SendMessageW(m_list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    text.resize(static_cast<size_t>(length));
    return text;
}

std::string ListView::text(int row, int column) const
{
    return utf8(cell(row, column));
}

std::string ListView::row(int row, int columns) const
{
    const int count = columns != 0 ? columns : Header_GetItemCount(header());
    std::string line;
    for (int i = 0; i < count; ++i) {
        line += (i == 0 ? "" : "|") + text(row, i);
    }
    return line;
}

std::vector<std::string> ListView::rows(int columns) const
{
    std::vector<std::string> lines;
    for (int i = 0; i < rowCount(); ++i) {
        lines.push_back(row(i, columns));
    }
    return lines;
}

std::vector<std::string> ListView::column(int column) const
{
    std::vector<std::string> texts;
    for (int i = 0; i < rowCount(); ++i) {
        texts.push_back(text(i, column));
    }
    return texts;
}

std::vector<std::string> ListView::columns() const
{
    std::vector<std::string> columns;
    for (WPARAM i = 0;; ++i) {
        wchar_t heading[100] = L"";
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        column.pszText = heading;
        column.cchTextMax = static_cast<int>(std::size(heading));
        if (!SendMessageW(m_list, LVM_GETCOLUMNW, i, reinterpret_cast<LPARAM>(&column))) {
            return columns;
        }
        const int side = column.fmt & LVCFMT_JUSTIFYMASK;
        columns.push_back(utf8(heading) + ' ' + std::to_string(column.cx) +
                          (side == LVCFMT_LEFT    ? ""
                           : side == LVCFMT_RIGHT ? " right"
                                                  : " centered"));
    }
}

int ListView::rowOf(const std::string& text) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (this->text(row, 0) == text) {
            return row;
        }
    }
    ADD_FAILURE() << "no row of " << text;
    return -1;
}

LVITEMW ListView::item(UINT mask, int row) const
{
    LVITEMW item{};
    item.mask = mask;
    item.iItem = row;
    if (!SendMessageW(m_list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) {
        throw std::out_of_range("the list has no row " + std::to_string(row));
    }
    return item;
}

LPARAM ListView::data(int row) const
{
    return item(LVIF_PARAM, row).lParam;
}

std::vector<LPARAM> ListView::allData() const
{
    std::vector<LPARAM> all;
    for (int row = 0; row < rowCount(); ++row) {
        all.push_back(data(row));
    }
    return all;
}

int ListView::image(int row) const
{
    return item(LVIF_IMAGE, row).iImage;
}

void ListView::select(int row, bool selected) const
{
    ListView_SetItemState(m_list, row, selected ? LVIS_SELECTED : 0u, LVIS_SELECTED);
}

void ListView::selectOnly(const std::vector<int>& rows) const
{
    select(-1, false);
    for (const int row : rows) {
        select(row);
    }
}

void ListView::setCell(int row, int column, const wchar_t* text) const
{
    ListView_SetItemText(m_list, row, column, const_cast<wchar_t*>(text));
}

void ListView::addRow(LPARAM data, const std::vector<std::wstring>& cells) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = rowCount();
    item.lParam = data;
    const auto row =
        static_cast<int>(SendMessageW(m_list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    for (size_t i = 0; i < cells.size(); ++i) {
        setCell(row, static_cast<int>(i), cells[i].c_str());
    }
}

void ListView::notify(NMHDR& notification, UINT code) const
{
    const int id = GetDlgCtrlID(m_list);
    notification = {m_list, static_cast<UINT_PTR>(id), code};
    SendMessageW(GetParent(m_list), WM_NOTIFY, static_cast<WPARAM>(id),
                 reinterpret_cast<LPARAM>(&notification));
}

void ListView::doubleClick() const
{
    NMITEMACTIVATE activation{};
    activation.iItem = selected();
    notify(activation.hdr, static_cast<UINT>(NM_DBLCLK));
}

void ListView::clickColumn(int column) const
{
    NMLISTVIEW click{};
    click.iItem = -1;
    click.iSubItem = column;
    notify(click.hdr, static_cast<UINT>(LVN_COLUMNCLICK));
}
