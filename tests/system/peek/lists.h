// What stands in list views, list boxes and status bars of other programs, and where.
#pragma once

#include <windows.h>

namespace peek {

/// The cells of a list view, tab-separated, a row a line.
void printList(HWND list);

/// How many rows a list view has.
void printCount(HWND list);

/// The numbers of the selected rows of a list view or entries of a list box, or the text of a tree's selected node.
void printChosen(HWND control);

/// The texts of a list box.
void printEntries(HWND box);

/// The texts of a status bar's parts.
void printParts(HWND bar);

// Places to click, on the screen. They throw when there is no such row, column or entry.
void printCell(HWND list, int row, int column);
void printHeader(HWND list, int column);
void printFilter(HWND list, int column);
void printEntry(HWND box, int entry);

} // namespace peek
