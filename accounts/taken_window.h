// A window whose messages somebody else gets first.
#pragma once

#include "frame/platform.h"

#include <utility>

/// Puts a procedure and an object in the place of a window's own procedure.
class TakenWindow {
public:
    TakenWindow() = default;
    TakenWindow(const TakenWindow&) = delete;
    TakenWindow& operator=(const TakenWindow&) = delete;
    ~TakenWindow() = default; // the window may be gone: who takes it gives it back

    void take(HWND window, WNDPROC procedure, void* object)
    {
        m_window = window;
        m_procedure = procedure;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(object));
        m_before = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)));
    }

    bool isTaken() const { return m_before != nullptr; }

    /// @return the window's own procedure, which has it again.
    WNDPROC giveBack()
    {
        SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_before));
        SetWindowLongPtrW(m_window, GWLP_USERDATA, 0);
        return std::exchange(m_before, nullptr);
    }

    LRESULT pass(UINT message, WPARAM wParam, LPARAM lParam) const
    {
        return CallWindowProcW(m_before, m_window, message, wParam, lParam);
    }

    /// The window's own procedure, while nobody else's stands before the one that was put there; else null.
    WNDPROC straight() const
    {
        return m_before != nullptr &&
                       GetWindowLongPtrW(m_window, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(m_procedure)
                   ? m_before
                   : nullptr;
    }

private:
    HWND m_window = nullptr;
    WNDPROC m_procedure = nullptr;
    WNDPROC m_before = nullptr;
};
