#include "tests/support/message_box_look.h"

#include "tests/support/window_text.h"

namespace {

constexpr int kTextId = 0xffff;

bool isButton(HWND window)
{
    return className(window) == "Button";
}

bool showsIcon(HWND window)
{
    // Some systems keep the field for the icon and leave it empty.
    return className(window) == "Static" && IsWindowVisible(window) &&
           (GetWindowLongW(window, GWL_STYLE) & SS_TYPEMASK) == SS_ICON &&
           SendMessageW(window, STM_GETICON, 0, 0) != 0;
}

} // namespace

bool isMessageBox(HWND dialog)
{
    // No template here has a static text with this number beside a push button and nothing else to type in.
    return GetDlgItem(dialog, kTextId) != nullptr &&
           FindWindowExW(dialog, nullptr, L"Edit", nullptr) == nullptr &&
           FindWindowExW(dialog, nullptr, L"SysListView32", nullptr) == nullptr;
}

MessageBoxLook lookAt(HWND box)
{
    MessageBoxLook look;
    look.text = controlText(box, kTextId);
    look.caption = windowText(box);
    look.owner = GetWindow(box, GW_OWNER);
    for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        look.buttons += isButton(child) && IsWindowVisible(child) ? 1 : 0;
        look.icon = look.icon || showsIcon(child);
    }
    return look;
}

void answerBox(HWND box)
{
    for (HWND child = GetWindow(box, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
        if (isButton(child) && IsWindowVisible(child)) {
            PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(GetDlgCtrlID(child)),
                         reinterpret_cast<LPARAM>(child));
            return;
        }
    }
}
