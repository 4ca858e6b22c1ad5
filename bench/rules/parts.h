// What a part of a step takes by itself, and what a list of rules holds of memory.
#pragma once

#include "bench/support/options.h"
#include "bench/support/table.h"

#include <windows.h>

#include <vector>

/// What corvane has to do beyond what the bare side of a step does, done by nobody but the control and the standard library,
/// beside the bare side of that step: what a ratio of corvane can not go below.
std::vector<Comparison> measureParts(HWND window, const Options& options);

/// Prints, on the error output, the bytes that a row takes, and what each step takes at most. The first thing in a process:
/// it sees only what is more than ever before.
void printMemory(HWND window, const Options& options);
