#include "tests/support/windows_radios.h"

#include "tests/support/window_text.h"

#include <gtest/gtest.h>

#include <set>

namespace {

constexpr wchar_t kToldNotTo[] = L"told not to click";

WNDPROC before = nullptr;
int sent = 0;

bool isAutoRadio(HWND button)
{
    return (GetWindowLongPtrW(button, GWL_STYLE) & BS_TYPEMASK) == BS_AUTORADIOBUTTON;
}

void chooseByTheKeyboard(HWND button)
{
    HWND dialog = GetParent(button);
    for (HWND other = GetNextDlgGroupItem(dialog, button, FALSE); other != nullptr && other != button;
         other = GetNextDlgGroupItem(dialog, other, FALSE))
    {
        SendMessageW(other, BM_SETCHECK, BST_UNCHECKED, 0);
    }
    SendMessageW(button, BM_SETCHECK, BST_CHECKED, 0);
    ++sent;
    SendMessageW(dialog, WM_COMMAND,
                 MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(button)), static_cast<WORD>(BN_CLICKED)),
                 reinterpret_cast<LPARAM>(button));
}

LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == BM_SETDONTCLICK) {
        wParam != 0 ? void(SetPropW(window, kToldNotTo, window)) : void(RemovePropW(window, kToldNotTo));
    }
    const LRESULT result = CallWindowProcW(before, window, message, wParam, lParam);
    if (message == WM_SETFOCUS && isAutoRadio(window) && GetPropW(window, kToldNotTo) == nullptr &&
        SendMessageW(window, BM_GETCHECK, 0, 0) != BST_CHECKED)
    {
        chooseByTheKeyboard(window);
    }
    return result;
}

/// Makes all buttons that are created from now on ask a procedure.
WNDPROC replaceProcedure(WNDPROC wanted)
{
    HWND button =
        CreateWindowExW(0, L"BUTTON", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    EXPECT_NE(button, nullptr);
    const auto previous =
        reinterpret_cast<WNDPROC>(SetClassLongPtrW(button, GCLP_WNDPROC, reinterpret_cast<LONG_PTR>(wanted)));
    DestroyWindow(button);
    return previous;
}

} // namespace

WindowsRadios::WindowsRadios()
{
    sent = 0;
    before = replaceProcedure(procedure);
    EXPECT_NE(before, nullptr);
}

WindowsRadios::~WindowsRadios()
{
    replaceProcedure(before);
}

int WindowsRadios::clicks()
{
    return sent;
}

int tabThrough(HWND dialog)
{
    int radios = 0;
    std::set<HWND> seen;
    for (HWND stop = GetNextDlgTabItem(dialog, nullptr, FALSE); stop != nullptr && seen.insert(stop).second;
         stop = GetNextDlgTabItem(dialog, stop, FALSE))
    {
        radios += isAutoRadio(stop) ? 1 : 0;
        // Test programs beside this one take the keyboard at times.
        for (int tries = 0; tries < 100 && GetFocus() != stop; ++tries) {
            focusOf(dialog);
            SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(stop), TRUE);
        }
        EXPECT_EQ(GetFocus(), stop);
    }
    return radios;
}
