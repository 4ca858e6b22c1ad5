#include "window.h"

#include "control_names.h"

#include <cstdio>

namespace peek {

std::string utf8(const std::wstring& text)
{
    const int room = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), nullptr, 0,
                                         nullptr, nullptr);
    std::string bytes(static_cast<size_t>(room), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), bytes.data(), room, nullptr,
                        nullptr);
    return bytes;
}

std::wstring wide(const std::string& bytes)
{
    const auto count = static_cast<int>(bytes.size());
    std::wstring text(bytes.size(), L'\0');
    text.resize(
        static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, bytes.data(), count, text.data(), count)));
    return text;
}

void print(const std::wstring& text)
{
    std::string bytes = utf8(text);
    std::erase(bytes, '\r');
    std::printf("%s\n", bytes.c_str());
}

void print(int number)
{
    std::printf("%d\n", number);
}

LRESULT send(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    // Bounded: a program that hangs must not hang the script as well.
    constexpr UINT kPatience = 20000;
    DWORD_PTR result = 0;
    if (SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kPatience, &result) == 0) {
        throw Missing{"an answer of the window"};
    }
    return static_cast<LRESULT>(result);
}

std::wstring textOf(HWND window)
{
    std::wstring text(static_cast<size_t>(send(window, WM_GETTEXTLENGTH)) + 1, L'\0');
    text.resize(static_cast<size_t>(
        send(window, WM_GETTEXT, static_cast<WPARAM>(text.size()), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

namespace {

BOOL CALLBACK collect(HWND window, LPARAM all)
{
    if (IsWindowVisible(window)) {
        reinterpret_cast<std::vector<HWND>*>(all)->push_back(window);
    }
    return TRUE;
}

} // namespace

std::vector<HWND> visibleWindows()
{
    std::vector<HWND> windows;
    EnumWindows(collect, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::wstring titleOf(HWND window)
{
    try {
        return textOf(window);
    } catch (const Missing&) {
        return {};
    }
}

HWND findWindow(const std::wstring& title)
{
    for (const HWND window : visibleWindows()) {
        if (titleOf(window).starts_with(title)) {
            return window;
        }
    }
    throw Missing{"a window \"" + utf8(title) + "\""};
}

HWND findControl(const std::wstring& title, const std::wstring& name)
{
    const HWND control = GetDlgItem(findWindow(title), controlNumber(name));
    if (control == nullptr) {
        throw Missing{"control " + utf8(name) + " of \"" + utf8(title) + "\""};
    }
    return control;
}

bool isA(HWND window, const wchar_t* className)
{
    wchar_t name[64] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return lstrcmpiW(name, className) == 0;
}

void printMiddle(HWND window, RECT area)
{
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
    std::printf("%ld %ld\n", (area.left + area.right) / 2, (area.top + area.bottom) / 2);
}

} // namespace peek
