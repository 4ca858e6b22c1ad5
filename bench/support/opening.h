// Opening a dialog, timed.
#pragma once

#include "bench/support/time.h"

#include <windows.h>

#include <functional>

/// Opens a dialog. Once it stands and nothing is left to do, it is looked at and cancelled.
/// @param open    returns when the dialog is closed.
/// @param listId  a control by which the dialog is known.
/// @param look    gets the dialog's control; may be empty.
/// @return from the call to the last call of `dialogReady`. What follows, showing and painting, is the control's own.
Time timedOpening(const std::function<void()>& open, int listId, const std::function<void(HWND list)>& look);

/// Tells that the dialog being opened has done its work.
void dialogReady();

/// Opens a dialog of the library's own template, with a procedure that knows what to do at the start and how to close.
/// @param start  called with the dialog in WM_INITDIALOG, before it counts as ready.
void openBareDialog(int templateId, const std::function<void(HWND dialog)>& start);
