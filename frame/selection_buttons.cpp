#include "frame/selection_buttons.h"

#include "frame/dialog_items.h"
#include "frame/list_ctrl.h"

void enableBySelection(HWND dialog, const CListCtrl& list, std::span<const int> ids)
{
    const bool anySelected = list.nextSelected() != -1;
    for (const int id : ids) {
        enableItem(dialog, id, anySelected);
    }
}
