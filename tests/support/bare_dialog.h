// A template of the library as the platform makes it a window, without any of the library's code.
#pragma once

#include <windows.h>

class BareDialog {
public:
    /// @param number  of the template. `window` is null when there is none.
    explicit BareDialog(int number);
    ~BareDialog();
    BareDialog(const BareDialog&) = delete;
    BareDialog& operator=(const BareDialog&) = delete;

    HWND window() const { return m_window; }
    HWND control(int id) const { return GetDlgItem(m_window, id); }

private:
    HWND m_window = nullptr;
};
