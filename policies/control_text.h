// Reading what was typed into an entry dialog.
#pragma once

#include "frame/platform.h"

/// Characters that are read of a control, with the terminator; what is longer is cut.
inline constexpr int kControlTextCapacity = 260;

/// The text of a dialog's control, empty when there is no such control.
/// @return the one buffer of this function, overwritten by each call.
const wchar_t* controlText(HWND dialog, int id);

/// Takes no more typing than will be read. A text that is set is shown whole, however long.
void limitTyping(HWND dialog, int id);

/// Wipes the buffer, after a password was read.
void forgetControlText();
