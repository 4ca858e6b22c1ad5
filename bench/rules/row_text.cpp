#include "row_text.h"

#include "bench/support/list_view.h"
#include "frame/size_text.h"
#include "store/lornix.h"

void RowText::writeNumbers(const QuotaRule& rule)
{
    formatSize(hardLimit, rule.hardLimit);
    formatSize(softLimit, rule.softLimit);
    formatSize(inUse, rule.inUse);
    formatPercent(percent, rule.inUse, rule.hardLimit);
}

void RowText::writeName(const QuotaRule& rule)
{
    getTextualSidW(rule.sid, name, 128);
    getAccountBySidW(rule.sid, name, 128);
}

void RowText::insertInto(HWND list, wchar_t* path, LPARAM data, int at)
{
    wchar_t* const cells[] = {name, hardLimit, softLimit, inUse, percent, path};
    list_view::insert(list, at, cells, data);
}
