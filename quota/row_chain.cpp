#include "quota/row_chain.h"

#include "frame/list_ctrl.h"
#include "quota/rule_chain.h"
#include "quota/rule_row.h"

bool sortsByItself(const CListCtrl& list)
{
    return (GetWindowLongPtrW(list.handle(), GWL_STYLE) & (LVS_SORTASCENDING | LVS_SORTDESCENDING)) != 0;
}

QuotaRule* relinkRows(const CListCtrl& list)
{
    ChainBuilder chain;
    const int rows = list.rowCount();
    for (int row = 0; row < rows; ++row) {
        chain.append(ruleOfRow(list, row));
    }
    return chain.first();
}
