// The account chooser, for the dialogs of this library.
#pragma once

#include "frame/platform.h"

/// Runs the chooser without preset owners.
/// @return as chooseSidFromUserInput, but null when the dialog cannot be shown: the last answer, which the export gives
///         then, may be released by now.
void* chooseAccountOfDialog(HWND owner);
