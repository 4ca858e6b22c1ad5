#include "list_view.h"

#include "bench_store.h"
#include "frame/size_text.h"

namespace list_view {

void writeNumbers(RowText& text, const QuotaRule& rule)
{
    formatSize(text.hardLimit, rule.hardLimit);
    formatSize(text.softLimit, rule.softLimit);
    formatSize(text.inUse, rule.inUse);
    formatPercent(text.percent, rule.inUse, rule.hardLimit);
}

void writeName(RowText& text, const QuotaRule& rule)
{
    getTextualSidW(rule.sid, text.name, 128);
    getAccountBySidW(rule.sid, text.name, 128);
}

void insertOnTop(HWND list, RowText& text, wchar_t* path, LPARAM data)
{
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.pszText = text.name;
    item.lParam = data;
    const auto row =
        static_cast<WPARAM>(SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    wchar_t* const texts[] = {text.hardLimit, text.softLimit, text.inUse, text.percent, path};
    for (wchar_t* cell : texts) {
        ++item.iSubItem;
        item.pszText = cell;
        SendMessageW(list, LVM_SETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
    }
}

LPARAM dataOf(HWND list, int row)
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return item.lParam;
}

int rowCount(HWND list)
{
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

void setRedraw(HWND list, bool on)
{
    SendMessageW(list, WM_SETREDRAW, on ? TRUE : FALSE, 0);
    if (on) {
        InvalidateRect(list, nullptr, TRUE);
    }
}

} // namespace list_view
