// A window to open dialogs over.
#pragma once

#include <windows.h>

class OwnerWindow {
public:
    OwnerWindow() = default;
    OwnerWindow(const OwnerWindow&) = delete;
    OwnerWindow& operator=(const OwnerWindow&) = delete;
    ~OwnerWindow() { DestroyWindow(m_window); }

    HWND window() const { return m_window; }

private:
    HWND m_window =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
};
