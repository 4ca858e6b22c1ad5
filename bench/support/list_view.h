// The list view by its own messages, as the sides without corvane use it.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <cstdint>
#include <initializer_list>
#include <span>

namespace list_view {

/// Inserts a row with the texts of its cells.
/// @param at     index; INT_MAX for the end.
/// @param image  -1: none.
/// @return the row's index.
int insert(HWND list, int at, std::span<wchar_t* const> cells, LPARAM data, int image = -1);
int rowCount(HWND list);
LPARAM dataOf(HWND list, int row);
/// @return the text, in a buffer that the next call uses again.
wchar_t* textOf(HWND list, int row, int column);
void setRedraw(HWND list, bool on);
/// @param row  -1: all.
void select(HWND list, int row, bool selected);
/// @param row  -1: none.
void selectOnly(HWND list, int row);

/// What the list shows in some columns, as a number: the same on all sides, or they did not do the same.
std::uint64_t hashOfRows(HWND list, std::initializer_list<int> columns);

} // namespace list_view

/// Lets a window and its children paint, and does whatever else waits. Between the steps of a bench, not within one.
void settle(HWND window);
