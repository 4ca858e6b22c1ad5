#include "tests/stress/monkey.h"

#include "tests/stress/stress.h"
#include "tests/support/dialog_look.h"
#include "tests/support/dialog_script.h"
#include "tests/support/message_box_look.h"
#include "tests/support/window_text.h"

#include <commctrl.h>

#include <gtest/gtest.h>

#include <iterator>
#include <utility>

namespace {

constexpr UINT kAct = WM_APP;
constexpr UINT_PTR kTimer = 1;
constexpr int kTooLong = 20000; // acts without any dialog to act on

} // namespace

Monkey::Monkey(std::uint32_t seed)
    : m_random(seed)
    , m_window(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr))
{
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(windowProc));
}

Monkey::~Monkey()
{
    DestroyWindow(m_window);
}

void Monkey::play(std::vector<Act> first, int random, const std::function<void()>& call)
{
    m_first = std::move(first);
    m_done = 0;
    m_left = random;
    m_playing = true;
    next();
    call();
    m_playing = false;
    KillTimer(m_window, kTimer);
}

LRESULT CALLBACK Monkey::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* const monkey = reinterpret_cast<Monkey*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == kAct || message == WM_TIMER) {
        KillTimer(window, kTimer);
        if (monkey->m_playing) {
            monkey->act();
        }
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Mostly at once. Now and then the dialogs get the time to paint and to see their timers.
void Monkey::next() const
{
    if (m_acts % 16 == 0) {
        SetTimer(m_window, kTimer, USER_TIMER_MINIMUM, nullptr);
    } else {
        PostMessageW(m_window, kAct, 0, 0);
    }
}

void Monkey::act()
{
    ++m_acts;
    stress::alive(m_last.c_str());
    next(); // before the act, which may open a dialog and come back only when that is closed
    const HWND front = DialogScript::front();
    if (front == nullptr) {
        if (++m_nothing > kTooLong) {
            ADD_FAILURE() << "no dialog can be used after: " << m_last;
            for (const HWND dialog : DialogScript::dialogs()) {
                EndDialog(dialog, IDCANCEL);
            }
        }
        return;
    }
    m_nothing = 0;
    if (m_done < m_first.size()) {
        m_first[m_done++](front);
    } else if (isMessageBox(front)) {
        answerBox(front);
    } else if (m_left > 0) {
        --m_left;
        actIn(front);
    } else {
        m_last = "close " + windowText(front);
        PostMessageW(front, WM_COMMAND, IDCANCEL, 0);
        // What cannot be cancelled for the moment may be closed, and at last the dialog is taken away.
        if (below(200) == 0) {
            EndDialog(front, IDCANCEL);
        }
    }
}

void Monkey::actIn(HWND front)
{
    const std::vector<HWND> controls = controlsOf(front);
    if (controls.empty() || below(4) == 0) {
        actOnDialog(front);
        return;
    }
    const HWND control = controls[static_cast<std::size_t>(below(static_cast<int>(controls.size())))];
    if (!IsWindowEnabled(control) || !IsWindowVisible(control)) {
        return; // a person could not
    }
    const std::string kind = className(control);
    m_last = kind + " " + std::to_string(GetDlgCtrlID(control)) + " of " + windowText(front);
    if (kind == "Button") {
        actOnButton(control);
    } else if (kind == "Edit") {
        actOnEdit(control);
    } else if (kind == "SysListView32") {
        actOnList(front, control);
    } else if (kind == "SysTreeView32") {
        actOnTree(control);
    }
}

void Monkey::actOnDialog(HWND front)
{
    const int what = below(90); // keys mostly: what ends a dialog is rare, or none would stay open for long
    m_last = "act " + std::to_string(what) + " on " + windowText(front);
    switch (what) {
    case 0:
        PostMessageW(front, WM_CLOSE, 0, 0);
        break;
    case 1:
        PostMessageW(front, WM_COMMAND, IDOK, 0);
        break;
    case 2:
        DestroyWindow(front);
        break;
    case 3:
        if (HWND owner = GetWindow(front, GW_OWNER)) {
            DestroyWindow(owner); // and what stands over it
        }
        break;
    case 4:
    case 5:
        SetWindowPos(front, nullptr, below(500), below(300), below(900), below(700),
                     SWP_NOZORDER | SWP_NOACTIVATE);
        break;
    case 6:
    case 7:
        UpdateWindow(front);
        break;
    case 8:
    case 9:
    case 10:
        SendMessageW(front, WM_COMMAND, MAKEWPARAM(below(65536), below(8)), 0);
        break;
    case 11:
    case 12: { // of the numbers that the dialogs use; OK and Cancel come often enough
        const int id = below(100) < 50 ? 3 + below(10) : 1000 + below(50);
        PostMessageW(front, WM_COMMAND, MAKEWPARAM(id, below(2) * 256), 0);
        break;
    }
    default: {
        constexpr WPARAM kKeys[] = {VK_TAB,    VK_TAB,    VK_UP,  VK_DOWN,  VK_LEFT, VK_RIGHT,
                                    VK_SPACE,  VK_HOME,   VK_END, VK_PRIOR, VK_NEXT, VK_F2,
                                    VK_INSERT, VK_DELETE, 'A',    VK_F4};
        press(GetFocus(), kKeys[below(static_cast<int>(std::size(kKeys)))]);
        break;
    }
    }
}

void Monkey::actOnButton(HWND button)
{
    const int id = GetDlgCtrlID(button);
    if ((id == IDOK || id == IDCANCEL) && below(10) != 0) {
        return; // or no dialog would stay open for long
    }
    below(2) == 0 ? void(PostMessageW(button, BM_CLICK, 0, 0)) : void(SendMessageW(button, BM_CLICK, 0, 0));
}

void Monkey::actOnEdit(HWND edit)
{
    if (below(3) == 0) {
        SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(oddText().c_str()));
    } else {
        SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(oddText().c_str()));
    }
}

void Monkey::actOnList(HWND front, HWND list)
{
    const int rows = ListView_GetItemCount(list);
    const int row = rows == 0 ? -1 : below(rows + 1) - 1; // -1: all
    switch (below(8)) {
    case 0:
        ListView_SetItemState(list, row, LVIS_SELECTED, LVIS_SELECTED);
        break;
    case 1:
        ListView_SetItemState(list, row, 0, LVIS_SELECTED);
        break;
    case 2:
        ListView_SetItemState(list, row, LVIS_FOCUSED, LVIS_FOCUSED);
        ListView_EnsureVisible(list, row, FALSE);
        break;
    case 3: {
        const HWND header = ListView_GetHeader(list);
        const LPARAM place = MAKELPARAM(below(300), 5);
        SendMessageW(header, WM_LBUTTONDOWN, MK_LBUTTON, place);
        SendMessageW(header, WM_LBUTTONUP, 0, place);
        break;
    }
    case 4: {
        NMITEMACTIVATE activation{};
        activation.hdr = {list, static_cast<UINT_PTR>(GetDlgCtrlID(list)), static_cast<UINT>(NM_DBLCLK)};
        activation.iItem = row;
        SendMessageW(front, WM_NOTIFY, activation.hdr.idFrom, reinterpret_cast<LPARAM>(&activation));
        break;
    }
    case 5:
        ListView_Scroll(list, below(200) - 100, below(200) - 100);
        break;
    default: {
        constexpr WPARAM kKeys[] = {VK_INSERT, VK_F2, VK_DELETE, VK_DOWN, VK_UP, VK_SPACE, VK_END, 'E'};
        press(list, kKeys[below(static_cast<int>(std::size(kKeys)))]);
        break;
    }
    }
}

void Monkey::actOnTree(HWND tree)
{
    HTREEITEM node = TreeView_GetRoot(tree);
    for (int steps = below(6); steps > 0 && node != nullptr; --steps) {
        HTREEITEM further =
            below(2) == 0 ? TreeView_GetChild(tree, node) : TreeView_GetNextSibling(tree, node);
        node = further != nullptr ? further : node;
    }
    if (node == nullptr) {
        return;
    }
    switch (below(3)) {
    case 0:
        TreeView_SelectItem(tree, node);
        break;
    case 1:
        TreeView_Expand(tree, node, TVE_TOGGLE);
        break;
    default:
        TreeView_Expand(tree, node, TVE_COLLAPSE | TVE_COLLAPSERESET);
        break;
    }
}

void Monkey::press(HWND control, WPARAM key)
{
    if (control != nullptr) {
        PostMessageW(control, WM_KEYDOWN, key, 0);
        PostMessageW(control, WM_KEYUP, key, 0);
    }
}

std::wstring Monkey::oddText()
{
    static const std::wstring kTexts[] = {
        L"",   L"a",      L"C:\\Tools\\bk.exe", L"\\\\", L"  ",       L"%s%n%ls",        L"-1",
        L"5g", L"\xD800", L"\x4e16\x754c",      L"\\",   L"a\tb\r\n", L"ADMIN\\someone", L"*.mp3",
        L"nul"};
    const int what = below(static_cast<int>(std::size(kTexts)) + 3);
    return what < static_cast<int>(std::size(kTexts))
               ? kTexts[what]
               : std::wstring(static_cast<std::size_t>(below(600)), L'x');
}
