#include "frame/dialog_items.h"

#include "frame/list_ctrl.h"

namespace {

// Panels ask after every change of a row, a thousand times while a thousand rows change. The count costs the same
// for any number of rows; the search for a selected row would go through all of them each time. Only behind the
// last row it costs nothing, and tells a list without a selection from a control that is none.
// QUIRK: that one counts as selected. ButtonsTest.WhatIsNoListCountsAsSelected
bool hasSelection(const CListCtrl& list)
{
    return list.selectedCount() > 0 || list.nextSelected(list.rowCount() - 1) != -1;
}

} // namespace

void enableBySelection(HWND dialog, const CListCtrl& list, std::span<const int> ids)
{
    const bool anySelected = hasSelection(list);
    for (const int id : ids) {
        enableItem(dialog, id, anySelected);
    }
}
