#include "frame/redraw_off.h"

#include <utility>

RedrawOff::RedrawOff(const CWnd& window)
    : m_window(window.handle())
    , m_visible((GetWindowLongPtrW(m_window, GWL_STYLE) & WS_VISIBLE) != 0)
    , m_off(m_window != nullptr) // no window, to some functions, is the desktop
{
    if (m_off) {
        SendMessageW(m_window, WM_SETREDRAW, FALSE, 0);
    }
}

void RedrawOff::restore()
{
    if (!std::exchange(m_off, false)) {
        return;
    }
    SendMessageW(m_window, WM_SETREDRAW, TRUE, 0);
    // Switching redraw on shows a hidden window where the platform's default handling does it.
    if (!m_visible && (GetWindowLongPtrW(m_window, GWL_STYLE) & WS_VISIBLE) != 0) {
        ShowWindow(m_window, SW_HIDE);
    }
    InvalidateRect(m_window, nullptr, TRUE);
}

QuietRedrawOff::Region QuietRedrawOff::unpaintedOf(HWND window)
{
    Region region(CreateRectRgn(0, 0, 0, 0));
    GetUpdateRgn(window, region.get(), FALSE);
    return region;
}

QuietRedrawOff::QuietRedrawOff(const CWnd& window)
    : m_window(window.handle())
    , m_unpainted(unpaintedOf(m_window))
    , m_redraw(window)
{
}

void QuietRedrawOff::restoreUnchanged()
{
    if (m_redraw.isOff()) {
        m_redraw.restore();
        ValidateRect(m_window, nullptr);
        InvalidateRgn(m_window, m_unpainted.get(), TRUE);
    }
}
