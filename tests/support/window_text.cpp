#include "tests/support/window_text.h"

#include "tests/support/text.h"

#include <gtest/gtest.h>

#include <iterator>

namespace {
HWND control(HWND dialog, int id)
{
    const HWND window = GetDlgItem(dialog, id);
    if (window == nullptr) {
        ADD_FAILURE() << "\"" << windowText(dialog) << "\" has no control " << id;
    }
    return window;
}
} // namespace

std::string windowText(HWND window)
{
    std::wstring text(static_cast<size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    const LRESULT length =
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return utf8({text.data(), static_cast<size_t>(length)});
}

std::string controlText(HWND dialog, int id)
{
    return windowText(control(dialog, id));
}

std::string className(HWND window)
{
    wchar_t name[128] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return utf8(name);
}

bool isEnabled(HWND dialog, int id)
{
    return IsWindowEnabled(control(dialog, id)) != FALSE;
}

int checkedOf(HWND dialog, const std::vector<int>& buttons)
{
    int checked = 0;
    for (const int button : buttons) {
        if (isChecked(dialog, button)) {
            EXPECT_EQ(checked, 0) << "more than one is checked";
            checked = button;
        }
    }
    return checked;
}

void expectEnabled(HWND dialog, const std::vector<int>& ids, bool enabled)
{
    for (const int id : ids) {
        EXPECT_EQ(isEnabled(dialog, id), enabled) << id;
    }
}

bool isChecked(HWND dialog, int id)
{
    return SendMessageW(control(dialog, id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

HWND focusOf(HWND dialog)
{
    const ULONGLONG end = GetTickCount64() + 10000;
    while (GetFocus() == nullptr && GetTickCount64() < end) {
        SetForegroundWindow(dialog);
        Sleep(10);
    }
    return GetFocus();
}

void pump(unsigned looks, unsigned pause)
{
    MSG message;
    for (unsigned i = 0; i < looks; ++i) {
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
        if (i % 16 == 0) {
            Sleep(pause);
        }
    }
}

void type(HWND dialog, int id, const wchar_t* text)
{
    SendMessageW(control(dialog, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
}

void click(HWND dialog, int id)
{
    SendMessageW(control(dialog, id), BM_CLICK, 0, 0);
}

void clickLater(HWND dialog, int id)
{
    PostMessageW(control(dialog, id), BM_CLICK, 0, 0);
}
