// Thin wrappers of windows: they send messages and own nothing.
#pragma once

#include "frame/platform.h"

#include <cstddef>

/// A window object with the layout of the platform framework's own: a host hands in objects of the framework, and
/// all that may be read of them is the window handle, which stands at byte offset 64. Our own objects have the
/// same layout, so that one set of functions serves both.
class CWnd {
public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    /// The wrapped window. Not virtual: of a host's object nothing else may be touched.
    HWND handle() const { return m_hWnd; }

    /// Wraps a window without owning it.
    void attach(HWND window) { m_hWnd = window; }

    /// Forgets the window. @return what was wrapped.
    HWND detach()
    {
        HWND window = m_hWnd;
        m_hWnd = nullptr;
        return window;
    }

protected:
    // Slot 0, as in the framework: the object is polymorphic, though nobody deletes it through this class.
    virtual ~CWnd() = default;

private:
    friend struct CWndLayout;
    void* m_frameworkState[7] = {};
    HWND m_hWnd = nullptr;
};
