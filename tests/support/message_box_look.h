// What stands in a message box.
#pragma once

#include <windows.h>

#include <iosfwd>
#include <string>

struct MessageBoxLook {
    std::string text;
    std::string caption;
    HWND owner = nullptr;
    int buttons = 0;
    bool icon = false;
};

/// Whether a dialog is a message box.
bool isMessageBox(HWND dialog);

MessageBoxLook lookAt(HWND box);

/// Presses the first button.
void answerBox(HWND box);
