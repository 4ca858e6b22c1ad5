#include "quota/label_edit.h"

#include "frame/size_text.h"
#include "quota/rule_row.h"

int answerLabelEdit(const CListCtrl& list, const NMLVDISPINFOW& notification)
{
    // Hosts forward whatever their list sends: the record behind another code may end with its header.
    const LVITEMW& item = notification.item;
    switch (notification.hdr.code) {
    case LVN_BEGINLABELEDITW:
        return item.iSubItem == rule_column::kSoftLimit ? 0 : 1;
    case LVN_ENDLABELEDITW: {
        if (item.iSubItem != rule_column::kSoftLimit || item.pszText == nullptr) {
            return 0;
        }
        QuotaRule* rule = ruleOfRow(list, item.iItem);
        if (rule == nullptr) {
            return 0;
        }
        // QUIRK: a cell edit pins both limits to what was typed. CellEditTest.WritesBothLimits
        rule->softLimit = parseCellSize(item.pszText);
        rule->hardLimit = rule->softLimit;
        return 1;
    }
    default:
        return 0;
    }
}
