// The base of the thin window wrappers: they send messages and own nothing.
#pragma once

#include "compiler/attributes.h"
#include "frame/platform.h"

#include <cstddef>
#include <utility>

/// A window object with the layout of the platform framework's own. A host hands in objects of the framework,
/// and all that may be read of them is the window handle, which stands at byte offset 64; no virtual of
/// theirs may be called. Our own objects have the same layout, so that one set of functions serves both.
class CWnd {
public:
    CWnd() = default;
    explicit CWnd(HWND window)
        : m_hWnd(window)
    {
    }
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    /// The wrapped window, null when there is none.
    HWND handle() const { return m_hWnd; }

    /// Wraps a window without owning it.
    void attach(HWND window) { m_hWnd = window; }

    /// Forgets the window. @return what was wrapped.
    HWND detach() { return std::exchange(m_hWnd, nullptr); }

    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(m_hWnd, message, wParam, lParam);
    }

protected:
    // Polymorphic like the framework's class, though nobody deletes an object through this one.
    virtual ~CWnd() = default;

private:
    friend struct CWndLayout;
    [[maybe_unused]] void* m_frameworkState[7] = {};
    HWND m_hWnd = nullptr;
};

CORVANE_LAYOUT_CHECKS_BEGIN
struct CWndLayout {
    static constexpr std::size_t kHandleOffset = offsetof(CWnd, m_hWnd);
};
CORVANE_LAYOUT_CHECKS_END
static_assert(CWndLayout::kHandleOffset == 64, "binary contract with the hosts' list-control objects");
