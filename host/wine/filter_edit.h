// The edit in which one filter of a filter bar is typed.
#pragma once

#include <windows.h>

namespace host {

/// Sent to the header when Enter or Esc ends typing: the filter counts at once.
constexpr UINT kFilterEntered = WM_APP + 1;

/// Makes one, as a child of the header. Its text begins where the headings do. Enter takes what was typed and Esc
/// takes it back; both go on to the list, and neither reaches the dialog, which would close.
HWND newFilterEdit(HWND header);

} // namespace host
