#include "tests/support/message_watch.h"

#include <commctrl.h>

#include <utility>

MessageWatch::MessageWatch(HWND window, Tell tell)
    : m_window(window)
    , m_tell(std::move(tell))
{
    SetWindowSubclass(m_window, procedure, reinterpret_cast<UINT_PTR>(this),
                      reinterpret_cast<DWORD_PTR>(this));
}

MessageWatch::~MessageWatch()
{
    RemoveWindowSubclass(m_window, procedure, reinterpret_cast<UINT_PTR>(this));
}

LRESULT CALLBACK MessageWatch::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                         DWORD_PTR self)
{
    reinterpret_cast<MessageWatch*>(self)->m_tell(message, wParam, lParam);
    return DefSubclassProc(window, message, wParam, lParam);
}
