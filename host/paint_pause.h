// Changing many rows at once.
#pragma once

#include <windows.h>

namespace host {

/// Keeps a list from painting every single change, as long as it lives.
class PaintPause {
public:
    explicit PaintPause(HWND list)
        : list_(list)
    {
        SendMessageW(list_, WM_SETREDRAW, FALSE, 0);
    }
    ~PaintPause()
    {
        SendMessageW(list_, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(list_, nullptr, TRUE);
    }
    PaintPause(const PaintPause&) = delete;
    PaintPause& operator=(const PaintPause&) = delete;

private:
    HWND list_;
};

} // namespace host
