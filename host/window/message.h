// The host's own message boxes.
#pragma once

#include <windows.h>

#include <string>

namespace host {

/// Shows a text that needs no decision.
/// @param icon     MB_ICONINFORMATION, MB_ICONWARNING or MB_ICONERROR.
/// @param caption  what it is about, in a word or two.
inline void say(HWND owner, UINT icon, const wchar_t* caption, const std::wstring& text)
{
    MessageBoxW(owner, text.c_str(), caption, MB_OK | icon);
}

/// Asks a question. @param buttons  MB_YESNO or MB_YESNOCANCEL, with the default button. @return IDYES, IDNO or IDCANCEL.
inline int ask(HWND owner, UINT buttons, const wchar_t* caption, const std::wstring& text)
{
    return MessageBoxW(owner, text.c_str(), caption, buttons | MB_ICONQUESTION);
}

} // namespace host
