// One answer to many notifications.
#pragma once

#include <windows.h>

#include <commctrl.h>

namespace host {

/// A list tells of each row that changes, a thousand times while all rows are selected. What follows from the
/// selection is done once: by a message that the window posts to itself, and that arrives when the list has told
/// all.
class OneAnswer {
public:
    /// @param message  of the window's own.
    OneAnswer(HWND window, UINT message)
        : m_window(window)
        , m_message(message)
    {
    }

    /// A row changed. Anything but its selection needs no answer.
    void heard(const NMLISTVIEW& change)
    {
        const bool selection = (change.uChanged & LVIF_STATE) != 0 &&
                               ((change.uOldState ^ change.uNewState) & LVIS_SELECTED) != 0;
        if (selection && !m_waiting) {
            m_waiting = PostMessageW(m_window, m_message, 0, 0) != FALSE;
        }
    }

    /// The message has arrived: from here on changes need another.
    void arrived() { m_waiting = false; }

private:
    HWND m_window;
    UINT m_message;
    bool m_waiting = false;
};

} // namespace host
