// What a part of a fill takes by itself, and what a list of accounts holds of memory.
#pragma once

#include "bench_accounts.h"

/// Finds the accounts as the fill thread does, and shows none.
void findAccounts(Source source);

/// Prints, on the error output, the bytes that a row takes, and what each step takes at most. The first thing in a process:
/// it sees only what is more than ever before.
void printMemory(int users);
