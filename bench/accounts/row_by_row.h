// The straightforward fill.
#pragma once

#include "bench_accounts.h"
#include "list_window.h"

/// Fills a list from a thread that sends each row by itself and waits for the answers.
void fillRowByRow(const ListWindow& window, Source source);
