#include "frame/list_ctrl.h"

#include "frame/screen_scale.h"

int CListCtrl::columnCount() const
{
    const auto count = SendMessageW(header(), HDM_GETITEMCOUNT, 0, 0);
    return count < 0 ? 0 : static_cast<int>(count);
}

void CListCtrl::insertColumn(int index, const ListColumn& column) const
{
    std::wstring heading = column.heading; // the message takes a writable text
    LVCOLUMNW item{};
    item.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
    item.fmt = column.format;
    item.cx = scaledToScreen(column.width);
    item.pszText = heading.data();
    item.iSubItem = index;
    send(LVM_INSERTCOLUMNW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

void CListCtrl::addExtendedStyle(DWORD styles) const
{
    const auto present = static_cast<DWORD>(send(LVM_GETEXTENDEDLISTVIEWSTYLE));
    send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(present | styles));
}

int CListCtrl::insertRow(int index, const wchar_t* text, LPARAM data) const
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iItem = index;
    item.pszText = const_cast<wchar_t*>(text);
    item.lParam = data;
    return static_cast<int>(send(LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
}

int CListCtrl::insertRow(int index, int image, const wchar_t* text, LPARAM data) const
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM;
    item.iItem = index;
    item.iImage = image;
    item.pszText = const_cast<wchar_t*>(text);
    item.lParam = data;
    return static_cast<int>(send(LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
}

void CListCtrl::setText(int row, int column, const wchar_t* text) const
{
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = const_cast<wchar_t*>(text);
    send(LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

std::wstring CListCtrl::text(int row, int column) const
{
    wchar_t start[260];
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = start;
    item.cchTextMax = 260;
    const auto read = [&] {
        return static_cast<std::size_t>(
            send(LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)));
    };
    std::size_t length = read();
    if (length + 1 < std::size(start)) {
        return {start, length};
    }
    // A full buffer may mean a longer text: ask again with more room until some is left over.
    for (std::wstring longer(1024, L'\0');; longer.resize(longer.size() * 4)) {
        item.pszText = longer.data();
        item.cchTextMax = static_cast<int>(longer.size());
        length = read();
        if (length + 1 < longer.size()) {
            longer.resize(length);
            return longer;
        }
    }
}

LPARAM CListCtrl::data(int row) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    return send(LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)) ? item.lParam : 0;
}

void CListCtrl::setData(int row, LPARAM data) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    item.lParam = data;
    send(LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

void CListCtrl::setState(int row, UINT state, UINT mask) const
{
    LVITEMW item{};
    item.state = state;
    item.stateMask = mask;
    send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void CListCtrl::selectOnly(int row) const
{
    constexpr int kAll = -1;
    setState(kAll, 0, LVIS_SELECTED);
    setState(row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    send(LVM_SETSELECTIONMARK, 0, row); // where a selection by shift and a click starts
    send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
}

int CListCtrl::rowOf(LPARAM data, int expected) const
{
    if (this->data(expected) == data) {
        return expected;
    }
    LVFINDINFOW wanted{};
    wanted.flags = LVFI_PARAM;
    wanted.lParam = data;
    const auto found =
        static_cast<int>(send(LVM_FINDITEMW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&wanted)));
    return found >= 0 && this->data(found) == data ? found : -1; // a window that is gone answers 0
}

int CListCtrl::image(int row) const
{
    LVITEMW item{};
    item.mask = LVIF_IMAGE;
    item.iItem = row;
    return send(LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)) ? item.iImage : 0;
}
