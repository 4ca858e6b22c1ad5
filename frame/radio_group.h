// A group of radio buttons under the keyboard.
#pragma once

#include "frame/platform.h"

#include <span>

/// Leaves a group one tab stop: its checked button, or else the first. A button that gets the keyboard unchecked
/// checks itself on some systems and sends a click; where none is checked, the first one is told not to, since
/// passing by is no choice. To be called when the group was filled, and after each choice.
/// @param ids  the buttons in their order; a missing one is passed over.
void keepOneTabStop(HWND dialog, std::span<const int> ids);
