// The text of a window.
#pragma once

#include <windows.h>

#include <string>

namespace host {

inline std::wstring windowText(HWND window)
{
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

} // namespace host
