// Keys and mouse, put where the system takes them from the devices: whatever is in front gets them.
#pragma once

#include <string>
#include <vector>

namespace peek {

/// Presses and releases a key, with others held down meanwhile: L"alt+F4", L"Return", L"a".
void pressKey(const std::wstring& chord);

void typeText(const std::wstring& text);

/// Presses and releases the left button so many times, with Ctrl held down if wanted.
void clickAt(int x, int y, int times, bool withCtrl);

/// Presses the left button on the frame of a window, moves by so much, and lets it go. Throws when the window does not follow.
void dragFrame(int x, int y, int byX, int byY);

/// Turns the wheel towards the person by so many notches.
void turnWheel(int x, int y, int notches);

} // namespace peek
