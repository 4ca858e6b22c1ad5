// What a thread needs while it lists drives and folders.
#pragma once

#include "frame/com_apartment.h"
#include "frame/wait_cursor.h"

/// Boxes of the system, as for a drive without a medium, are kept from a thread: the calls fail without them.
class NoSystemBoxes {
public:
    NoSystemBoxes()
        : m_changed(SetThreadErrorMode(GetThreadErrorMode() | SEM_FAILCRITICALERRORS, &m_before) != FALSE)
    {
    }
    NoSystemBoxes(const NoSystemBoxes&) = delete;
    NoSystemBoxes& operator=(const NoSystemBoxes&) = delete;
    ~NoSystemBoxes()
    {
        if (m_changed) {
            SetThreadErrorMode(m_before, nullptr);
        }
    }

private:
    DWORD m_before = 0;
    bool m_changed;
};

/// Prepares the thread for a listing, which may take long and asks the shell for icons. To be held outside of a
/// guarded step, so that a fault leaves nothing of it behind.
struct ListingThread {
    NoSystemBoxes noBoxes;
    ComApartment forTheShell;
    WaitCursor takesTime;
};
