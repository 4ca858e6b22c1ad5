// The list view as the sides without corvane.dll use it.
#pragma once

#include "corvane_types.h"

#include <windows.h>

#include <commctrl.h>

/// Messages and texts that the sides have in common.
namespace list_view {

/// A store's record as the text of a row, in the order of the columns.
struct RowText {
    wchar_t name[128] = {};
    wchar_t hardLimit[32] = {};
    wchar_t softLimit[32] = {};
    wchar_t inUse[32] = {};
    wchar_t percent[6] = {};
};

/// Writes everything but the name.
void writeNumbers(RowText& text, const QuotaRule& rule);
/// Asks the store for the name, as a fill must.
void writeName(RowText& text, const QuotaRule& rule);
/// Inserts a row at the top.
void insertOnTop(HWND list, RowText& text, wchar_t* path, LPARAM data);
LPARAM dataOf(HWND list, int row);
int rowCount(HWND list);
void setRedraw(HWND list, bool on);

} // namespace list_view
