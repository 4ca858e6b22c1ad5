// Sees the messages of a window before the window does.
#pragma once

#include <windows.h>

#include <functional>

/// Tells a test of each message that a window of this thread gets while this object lives.
class MessageWatch {
public:
    using Tell = std::function<void(UINT message, WPARAM wParam, LPARAM lParam)>;

    MessageWatch(HWND window, Tell tell);
    ~MessageWatch();
    MessageWatch(const MessageWatch&) = delete;
    MessageWatch& operator=(const MessageWatch&) = delete;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                      DWORD_PTR self);
    HWND m_window;
    Tell m_tell;
};
