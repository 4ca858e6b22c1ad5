#include "frame/radio_group.h"

#include "frame/dialog_items.h"

namespace {

void setTabStop(HWND button, bool stop)
{
    const LONG_PTR style = GetWindowLongPtrW(button, GWL_STYLE);
    const LONG_PTR wanted = stop ? style | WS_TABSTOP : style & ~LONG_PTR{WS_TABSTOP};
    if (wanted != style) {
        SetWindowLongPtrW(button, GWL_STYLE, wanted);
    }
}

// @return the id of the one tab stop, 0 when the dialog has none of the buttons.
int tabStopOf(HWND dialog, std::span<const int> ids)
{
    int first = 0;
    for (const int id : ids) {
        if (itemIsChecked(dialog, id)) {
            return id;
        }
        if (first == 0 && itemExists(dialog, id)) {
            first = id;
        }
    }
    return first;
}

} // namespace

void keepOneTabStop(HWND dialog, std::span<const int> ids)
{
    const int stop = tabStopOf(dialog, ids);
    for (const int id : ids) {
        HWND button = GetDlgItem(dialog, id);
        const bool passedBy = id == stop && !itemIsChecked(dialog, id);
        setTabStop(button, id == stop);
        SendMessageW(button, BM_SETDONTCLICK, passedBy, 0);
    }
}
