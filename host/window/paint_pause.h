// Changing many rows at once.
#pragma once

#include <windows.h>

namespace host {

/// Keeps a list from painting every single change, as long as it lives.
class PaintPause {
public:
    explicit PaintPause(HWND list)
        : m_list(list)
    {
        SendMessageW(m_list, WM_SETREDRAW, FALSE, 0);
    }
    ~PaintPause()
    {
        SendMessageW(m_list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(m_list, nullptr, TRUE);
    }
    PaintPause(const PaintPause&) = delete;
    PaintPause& operator=(const PaintPause&) = delete;

private:
    HWND m_list;
};

} // namespace host
