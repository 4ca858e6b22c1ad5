// What stands in a tree of another program.
#pragma once

#include <windows.h>

namespace peek {

/// The texts of all nodes, a line each, children behind their parent with one more tab in front.
void printTree(HWND tree);

/// The text of the selected node.
void printChosenNode(HWND tree);

} // namespace peek
