#include "bench/support/list_view.h"

#include <functional>
#include <iterator>
#include <string_view>

namespace list_view {

int insert(HWND list, int at, std::span<wchar_t* const> cells, LPARAM data, int image)
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM | (image >= 0 ? LVIF_IMAGE : 0u);
    item.iItem = at;
    item.iImage = image;
    item.pszText = cells[0];
    item.lParam = data;
    const auto row = SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    for (wchar_t* const cell : cells.subspan(1)) {
        ++item.iSubItem;
        item.pszText = cell;
        SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    return static_cast<int>(row);
}

int rowCount(HWND list)
{
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

LPARAM dataOf(HWND list, int row)
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return item.lParam;
}

wchar_t* textOf(HWND list, int row, int column)
{
    static wchar_t text[512];
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = static_cast<int>(std::size(text));
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

void select(HWND list, int row, bool selected)
{
    LVITEMW item{};
    item.state = selected ? LVIS_SELECTED : 0u;
    item.stateMask = LVIS_SELECTED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void selectOnly(HWND list, int row)
{
    select(list, -1, false);
    if (row >= 0) {
        select(list, row, true);
    }
}

void setRedraw(HWND list, bool on)
{
    SendMessageW(list, WM_SETREDRAW, on ? TRUE : FALSE, 0);
    if (on) {
        InvalidateRect(list, nullptr, TRUE);
    }
}

std::uint64_t hashOfRows(HWND list, std::initializer_list<int> columns)
{
    std::uint64_t hash = 0;
    const int rows = rowCount(list);
    for (int row = 0; row < rows; ++row) {
        for (const int column : columns) {
            hash = hash * 31 + std::hash<std::wstring_view>{}(textOf(list, row, column));
        }
    }
    return hash;
}

} // namespace list_view

void settle(HWND window)
{
    UpdateWindow(window);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageW(&message);
    }
}
