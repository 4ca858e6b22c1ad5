// The windows of other programs, found by title and control id.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace peek {

/// What is not there; thrown.
struct Missing {
    std::string what;
};

std::string utf8(const std::wstring& text);
std::wstring wide(const std::string& utf8);

/// A line on standard output, without returns.
void print(const std::wstring& text);
void print(int number);

/// Sends a message to another program's window. Throws when no answer comes.
LRESULT send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

std::wstring textOf(HWND window);

std::vector<HWND> visibleWindows();

/// Empty for a window that has just gone.
std::wstring titleOf(HWND window);

/// The first visible top-level window whose title begins so. Throws when there is none.
HWND findWindow(const std::wstring& title);

/// A control of such a window. Throws when there is none.
HWND findControl(const std::wstring& title, const std::wstring& name);

/// Whether a window is of a class of the system.
bool isA(HWND window, const wchar_t* className);

/// Prints the middle of an area of a window, on the screen.
void printMiddle(HWND window, RECT area);

} // namespace peek
