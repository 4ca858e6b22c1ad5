#include "quota/rule_list.h"

#include "frame/list_ctrl.h"
#include "frame/redraw_off.h"
#include "quota/row_chain.h"
#include "quota/rule_adding.h"
#include "quota/rule_chain.h"
#include "quota/rule_filling.h"
#include "quota/rule_row.h"
#include "quota/settings_result.h"
#include "store/lornix.h"

#include <vector>

namespace {

/// The window that owns a dialog on a selected row: the list's header. QUIRK: a list without a child window
/// faults here, so that no dialog opens that nothing owns. ListEditTest.AListWithoutAChildFaults
HWND ownerForEditing(const CListCtrl& list)
{
    HWND top = list.topChild();
    if (top == nullptr) {
        const CWnd* const volatile missing = nullptr;
        return *reinterpret_cast<const HWND volatile*>(reinterpret_cast<UINT_PTR>(missing) +
                                                       CWndLayout::kHandleOffset);
    }
    return top;
}

/// The selected rows, upwards. What is no list view answers 0 to every question, for ever.
std::vector<int> selectedRows(const CListCtrl& list)
{
    std::vector<int> selected;
    if (list.rowCount() > 0) {
        for (int row = list.nextSelected(), last = -1; row > last; row = list.nextSelected(row)) {
            selected.push_back(last = row);
        }
    }
    return selected;
}

} // namespace

namespace rule_list {

void initialize(const CListCtrl& list, const PathList* paths)
{
    list.deleteAllRows();
    for (int columns = list.columnCount(); columns > 0; --columns) {
        list.deleteColumn(0);
    }
    for (int index = 0; const ListColumn& column : kRuleColumns) {
        list.insertColumn(index++, column);
    }
    list.addExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP | LVS_EX_LABELTIP);
    fill(list, paths);
}

void fill(const CListCtrl& list, const PathList* paths)
{
    Filling filling(list, paths);
    // A list that shows everything already is not repainted.
    if (QuotaRule* rule = filling.nextNew()) {
        auto readAll = [&] {
            for (; rule != nullptr; rule = filling.nextNew()) {
                filling.show(*rule);
            }
        };
        // A store that fails in the middle leaves the rows that it has given.
        withRedrawOff(list, [&] { runAlwaysAfter(readAll, [&] { filling.showRows(); }); });
    }
}

bool add(const CListCtrl& list, const void* sid, const PathList* paths)
{
    if (paths == nullptr) {
        return true;
    }
    Adding adding(list, sid);
    for (wchar_t* path : foldersOf(paths)) {
        adding.add(path, paths->count != 1);
    }
    debug(adding.chain());
    return adding.accepted();
}

bool editSelected(const CListCtrl& list)
{
    if (list.rowCount() == 0) {
        return false;
    }
    const int selected = list.nextSelected();
    QuotaRule* rule = selected < 0 ? nullptr : ruleOfRow(list, selected);
    if (rule == nullptr) {
        return true;
    }
    const LPARAM data = list.data(selected);
    rule = runSettings(ownerForEditing(list), rule, 0);
    if (rule == nullptr) {
        return false;
    }
    // A host may fill or sort the list while the dialog is open.
    const int row = list.rowOf(data, selected);
    if (row >= 0) {
        showNumbers(list, row, *rule);
    }
    debug(rule);
    return true;
}

bool dropSelected(const CListCtrl& list)
{
    const std::vector<int> selected = selectedRows(list);
    if (selected.empty()) {
        return false;
    }
    // Downwards the records leave the chain, upwards the rows leave the list: each then moves only rows that stay.
    for (const int row : selected) {
        if (const QuotaRule* rule = ruleOfRow(list, row)) {
            unlinkRule(*rule);
        }
    }
    withRedrawOff(list, [&] {
        // A control that keeps its selection as stretches of rows would look at all of them with each row deleted.
        for (const int row : selected) {
            list.deselect(row);
        }
        for (auto row = selected.rbegin(); row != selected.rend(); ++row) {
            list.deleteRow(*row);
        }
    });
    return true;
}

QuotaRule* chain(const CListCtrl& list)
{
    if (list.rowCount() == 0) {
        return nullptr;
    }
    QuotaRule* first = relinkRows(list);
    debug(first);
    return first;
}

} // namespace rule_list
