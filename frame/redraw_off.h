// Bulk changes of a control without a repaint per row.
#pragma once

#include "frame/always_after.h"
#include "frame/wnd.h"
#include "store/owned.h"

/// Switches a control's redrawing off, then on again, and has the control repainted once. Without a window it does
/// nothing. For work inside a crash guard or work that cannot fault: a processor fault skips the destructor.
class RedrawOff {
public:
    explicit RedrawOff(const CWnd& window);
    RedrawOff(const RedrawOff&) = delete;
    RedrawOff& operator=(const RedrawOff&) = delete;
    ~RedrawOff() { restore(); }

    /// Switches redrawing on again; once.
    void restore();

    bool isOff() const { return m_off; }

private:
    HWND m_window;
    bool m_visible;
    bool m_off;
};

/// The same for work that may turn out to have changed nothing that can be seen.
class QuietRedrawOff {
public:
    explicit QuietRedrawOff(const CWnd& window);

    void restore() { m_redraw.restore(); }

    /// As restore, but what waited for a repaint before goes on waiting, and nothing else is painted.
    void restoreUnchanged();

private:
    using Region = Owned<HRGN, DeleteObject>;
    static Region unpaintedOf(HWND window);

    HWND m_window;
    Region m_unpainted; ///< what waits for a repaint; asked for while the control still draws
    RedrawOff m_redraw;
};

/// Runs work with redrawing off. Whatever the work raises goes on to the caller, a processor fault too, and
/// finds the control drawing again: a host that survives a faulting store must not be left with a frozen
/// list.
template <class Work>
void withRedrawOff(const CWnd& window, Work&& work)
{
    RedrawOff off(window);
    runAlwaysAfter(work, [&off] { off.restore(); });
}
