// The controls of a dialog, by their ids. A control that the template does not hold is passed over.
#pragma once

#include "frame/platform.h"

#include <span>

class CListCtrl;

inline bool itemExists(HWND dialog, int id)
{
    return GetDlgItem(dialog, id) != nullptr;
}

inline void enableItem(HWND dialog, int id, bool enabled)
{
    EnableWindow(GetDlgItem(dialog, id), enabled ? TRUE : FALSE);
}

/// Enables controls that make sense only while a row of a list is selected, and disables them otherwise.
void enableBySelection(HWND dialog, const CListCtrl& list, std::span<const int> ids);

/// Whether a check box or radio button is checked; false when there is none.
inline bool itemIsChecked(HWND dialog, int id)
{
    return IsDlgButtonChecked(dialog, id) == BST_CHECKED;
}

inline void checkItem(HWND dialog, int id, bool checked)
{
    CheckDlgButton(dialog, id, checked ? BST_CHECKED : BST_UNCHECKED);
}

/// Gives the keyboard to a control when what had it was disabled: keys would go nowhere. A dialog that is left and
/// entered again meanwhile has it itself.
inline void rescueKeyboard(HWND dialog, HWND control)
{
    HWND focus = GetFocus();
    if (GetActiveWindow() == dialog && (focus == nullptr || focus == dialog || !IsWindowEnabled(focus))) {
        SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    }
}
