// The window around an account list.
#pragma once

#include "bench/support/time.h"
#include "tests/accounts/filter_bar.h"

/// As much of the chooser as the list has to do with: its size, and the button that is enabled when a fill ends.
class ListWindow {
public:
    ListWindow();
    ~ListWindow();
    ListWindow(const ListWindow&) = delete;
    ListWindow& operator=(const ListWindow&) = delete;

    HWND window() const { return m_window; }
    HWND list() const { return m_list; }
    FilterBar& filters() { return m_filters; }

    /// Handles messages until the fill has ended and its rows are painted.
    /// @return when the first rows were painted.
    Time waitForFill() const;
    /// The same until a thread has ended.
    void waitFor(HANDLE thread) const;

private:
    HWND m_window;
    HWND m_cancel;
    HWND m_list;
    FilterBar m_filters;
};
