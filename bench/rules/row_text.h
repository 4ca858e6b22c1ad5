// A rule as the sides without corvane.dll show it.
#pragma once

#include "corvane_types.h"

#include <windows.h>

/// A store's record as the text of a row, in the order of the columns.
struct RowText {
    wchar_t name[128] = {};
    wchar_t hardLimit[32] = {};
    wchar_t softLimit[32] = {};
    wchar_t inUse[32] = {};
    wchar_t percent[6] = {};

    /// Writes everything but the name.
    void writeNumbers(const QuotaRule& rule);
    /// Asks the store for the name, as a fill must.
    void writeName(const QuotaRule& rule);
    /// Inserts a row. @param at  index: the top; INT_MAX for the end.
    void insertInto(HWND list, wchar_t* path, LPARAM data, int at = 0);
};
