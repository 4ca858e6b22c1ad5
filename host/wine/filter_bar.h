// A header filter bar for the runtime used on Linux, whose header control has none.
#pragma once

#include <windows.h>

namespace host {

/// Gives a header control that asked for a filter bar (HDS_FILTERBAR) one: an edit under each header cell, and the
/// platform's own messages and notifications for filters. Ends with the header window.
void addFilterBar(HWND header);

} // namespace host
