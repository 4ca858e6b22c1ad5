// A small window that tells what keeps the caller's thread busy.
#pragma once

#include "frame/platform.h"
#include "store/owned.h"

#include <string>

/// Shown when the work takes longer than half a second, and gone when this object is. A thread of its own shows it:
/// the caller's is inside the store and paints nothing. It takes neither keys nor clicks. To be held outside of
/// guarded steps: a fault that skips the destructor would leave it standing.
class BusyNotice {
public:
    /// @param over  a window in whose middle it stands, and whose font it uses.
    /// @param what  what is done.
    /// @param with  what it is done with; a path that is too long is shortened in its middle.
    BusyNotice(HWND over, const wchar_t* what, const wchar_t* with);
    BusyNotice(const BusyNotice&) = delete;
    BusyNotice& operator=(const BusyNotice&) = delete;
    ~BusyNotice();

private:
    using Handle = Owned<HANDLE, CloseHandle>;

    static DWORD WINAPI threadProc(void* self);
    void showUntilDone() const;
    HWND makeWindow() const;
    HWND makeLine(HWND window, int index, DWORD style, const std::wstring& text) const;

    std::wstring m_what;
    std::wstring m_with;
    WPARAM m_font; ///< of the window under it
    RECT m_place;  ///< on the screen
    SIZE m_margin; ///< around and between the lines
    Handle m_done; ///< signalled when the work is done
    Handle m_thread;
};
