// Radio buttons that behave as those of systems which this runtime is not.
#pragma once

#include <windows.h>

/// While it lives, an automatic radio button that is created and gets the keyboard while it is unchecked checks itself
/// and sends a click, unless it was told not to.
class WindowsRadios {
public:
    WindowsRadios();
    ~WindowsRadios();
    WindowsRadios(const WindowsRadios&) = delete;
    WindowsRadios& operator=(const WindowsRadios&) = delete;

    /// How many such clicks there were.
    static int clicks();
};

/// Goes once through all tab stops of a dialog with the keyboard.
/// @return how many radio buttons were among them.
int tabThrough(HWND dialog);
