#include "frame/selection_buttons.h"

#include "frame/list_ctrl.h"

void enableBySelection(HWND dialog, const CListCtrl& list, std::span<const int> ids)
{
    const BOOL anySelected = list.nextSelected() != -1;
    for (const int id : ids) {
        EnableWindow(GetDlgItem(dialog, id), anySelected);
    }
}
