// What a panel's list goes through beside its own life: a group's rule, a parent that listens.
#pragma once

#include "bench/support/options.h"
#include "bench/support/table.h"

#include <windows.h>

#include <vector>

/// @param window  visible parent of the lists.
std::vector<Comparison> measurePanel(HWND window, const Options& options);
