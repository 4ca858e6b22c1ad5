#include "frame/redraw_off.h"

#include "frame/stack_guarantee.h"

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

namespace redraw_detail {
namespace {

// Runs where the fault was raised, on top of the stack that it left.
LONG restoreAndGoOn(RedrawOff& off)
{
    off.restore();
    return EXCEPTION_CONTINUE_SEARCH;
}

CORVANE_NOINLINE void runRestoring(RedrawOff& off, void (*call)(void*), void* context)
{
    __try
    {
        call(context);
    } __except (restoreAndGoOn(off))
    {
    }
}

} // namespace

void run(const CWnd& window, void (*call)(void*), void* context)
{
    keepStackForHandlers();
    RedrawOff off(window);
    runRestoring(off, call, context);
}

} // namespace redraw_detail
