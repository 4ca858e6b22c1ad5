// Buttons that make sense only while a row is selected.
#pragma once

#include "frame/platform.h"

#include <span>

class CListCtrl;

/// Enables controls of a dialog when the list has a selected row, disables them otherwise.
/// @param ids  control ids; a missing control is passed over.
void enableBySelection(HWND dialog, const CListCtrl& list, std::span<const int> ids);
