// The library's dialogs that stand for themselves, each behind a menu entry.
#pragma once

#include <windows.h>

namespace host {

/// Opens the dialog of a menu entry.
/// @return false when the entry is none of them.
bool openLibraryDialog(HWND owner, int menuEntry);

} // namespace host
