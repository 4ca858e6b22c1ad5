// Where the controls stand on the panel, for any size of the window.
#pragma once

#include <windows.h>

namespace host {

/// Moves all controls to their places in the present client area.
void layOutPanel(HWND panel);

/// The smallest size of the whole window at which nothing is cut off.
SIZE smallestPanel(HWND panel);

} // namespace host
