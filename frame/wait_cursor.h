// The wait cursor, shown while the store measures a folder.
#pragma once

#include "frame/platform.h"

class WaitCursor {
public:
    WaitCursor()
        : m_previous(SetCursor(LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_WAIT))))
    {
    }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor() { SetCursor(m_previous); }

private:
    HCURSOR m_previous;
};
