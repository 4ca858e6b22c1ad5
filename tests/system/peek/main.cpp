// The eyes and hands of a script: tells what stands in the windows of another program, and where, and presses keys and
// mouse buttons. What the system tells windows by itself, it can tell as well.
//
// Reads requests from standard input, a line each, words parted by tabs, in UTF-8; each answer is any number of lines
// and a last one of the byte 4 and a number: 0; 1 when there is no such window, control or row; 2 when the request is
// wrong. Ends with its input.
//
//   windows                         the titles of all visible top-level windows
//   foreground                      class and title of the window that gets the keys
//   extent                          left, top, width and height of what they cover together
//   menu                            yes or no: whether a menu is open
//   text TITLE ID                   the text of a control
//   enabled TITLE ID                yes or no
//   checked TITLE ID                yes or no, of a check box or radio button
//   list TITLE ID                   the cells of a list view, tab-separated, a row a line
//   count TITLE ID                  how many rows a list view has
//   chosen TITLE ID                 the selected rows of a list view, or entries of a list box, by number; the
//                                   text of the selected node of a tree
//   entries TITLE ID                the texts of a list box
//   parts TITLE ID                  the parts of a status bar, a line each
//   tree TITLE ID                   the nodes of a tree, a line each, children indented by tabs
//   front TITLE                     yes or no: whether the window gets the keys
//   focus TITLE ID                  yes or no: whether the control has the focus; the ID may also be "cell" for an
//                                   edit inside a list view, "filter" for one inside its header
//   point TITLE ID                  the middle of a control on the screen: x y
//   cell TITLE ID ROW COLUMN        the middle of a cell of a list view
//   header TITLE ID COLUMN          the middle of a column heading
//   filter TITLE ID COLUMN          the middle of the filter under a column heading
//   entry TITLE ID NUMBER           a place on an entry of a list box
//   press KEY                       presses a key, alone or with others: Return, alt+F4
//   type TEXT                       types it
//   click TIMES X Y                 presses the left button
//   ctrl-click TIMES X Y            the same with Ctrl held down
//   drag X Y BY_X BY_Y              drags the frame of a window
//   wheel NOTCHES X Y               turns the wheel
//   close TITLE                     tells a window to close, as another program can at any time
//   endsession TITLE                yes or no: whether a window lets the session end, which does not end by that
//
// TITLE is how the title of a visible top-level window begins, ID the name of a control in one of the resource.h.
#include "control_names.h"
#include "input.h"
#include "lists.h"
#include "tree.h"
#include "window.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <map>

namespace peek {
namespace {

void printYesOrNo(bool yes)
{
    print(yes ? L"yes" : L"no");
}

/// What has the focus in a window that gets the keys, nullptr in any other.
HWND focusIn(HWND window)
{
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    if (GetForegroundWindow() != window ||
        !GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info))
    {
        return nullptr;
    }
    return info.hwndFocus;
}

bool hasFocus(const std::wstring& title, const std::wstring& name)
{
    const HWND window = findWindow(title);
    const HWND focus = focusIn(window);
    const HWND parent = focus == nullptr ? nullptr : GetParent(focus);
    if (name == L"cell" || name == L"filter") {
        return parent != nullptr && isA(parent, name == L"cell" ? WC_LISTVIEWW : WC_HEADERW);
    }
    const int id = controlNumber(name);
    return parent == window && GetDlgCtrlID(focus) == id;
}

void printExtent()
{
    RECT all{};
    for (const HWND window : visibleWindows()) {
        RECT area{};
        GetWindowRect(window, &area);
        UnionRect(&all, &all, &area);
    }
    std::printf("%ld %ld %ld %ld\n", all.left, all.top, all.right - all.left, all.bottom - all.top);
}

void printForeground()
{
    const HWND window = GetForegroundWindow();
    wchar_t name[64] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    print(std::wstring(name) + L" " + titleOf(window));
}

void printWindows()
{
    for (const HWND window : visibleWindows()) {
        print(titleOf(window));
    }
}

bool menuIsOpen()
{
    const std::vector<HWND> windows = visibleWindows();
    return std::any_of(windows.begin(), windows.end(), [](HWND window) { return isA(window, L"#32768"); });
}

void printPoint(HWND control)
{
    RECT area{};
    GetClientRect(control, &area);
    printMiddle(control, area);
}

/// What is asked of a control, by how many numbers come after its id.
using OfControl = void (*)(HWND);
using OfRow = void (*)(HWND, int);
using OfCell = void (*)(HWND, int, int);

const std::map<std::wstring, OfControl> kOfControl{{L"text",
                                                    [](HWND control) {
                                                        print(textOf(control));
                                                    }},
                                                   {L"enabled",
                                                    [](HWND control) {
                                                        printYesOrNo(IsWindowEnabled(control) != 0);
                                                    }},
                                                   {L"checked",
                                                    [](HWND control) {
                                                        printYesOrNo(send(control, BM_GETCHECK) ==
                                                                     BST_CHECKED);
                                                    }},
                                                   {L"list", printList},
                                                   {L"count", printCount},
                                                   {L"chosen", printChosen},
                                                   {L"entries", printEntries},
                                                   {L"parts", printParts},
                                                   {L"tree", printTree},
                                                   {L"point", printPoint}};
const std::map<std::wstring, OfRow> kOfRow{
    {L"header", printHeader}, {L"filter", printFilter}, {L"entry", printEntry}};
const std::map<std::wstring, OfCell> kOfCell{{L"cell", printCell}};

bool look(const std::vector<std::wstring>& words)
{
    const std::wstring& request = words[0];
    const size_t count = words.size();
    const auto control = [&words] {
        return findControl(words[1], words[2]);
    };
    const auto number = [&words](size_t at) {
        return std::stoi(words[at]);
    };
    if (request == L"windows" && count == 1) {
        printWindows();
    } else if (request == L"foreground" && count == 1) {
        printForeground();
    } else if (request == L"extent" && count == 1) {
        printExtent();
    } else if (request == L"menu" && count == 1) {
        printYesOrNo(menuIsOpen());
    } else if (request == L"front" && count == 2) {
        printYesOrNo(focusIn(findWindow(words[1])) != nullptr);
    } else if (request == L"focus" && count == 3) {
        printYesOrNo(hasFocus(words[1], words[2]));
    } else if (request == L"close" && count == 2) {
        send(findWindow(words[1]), WM_CLOSE);
    } else if (request == L"endsession" && count == 2) {
        const HWND window = findWindow(words[1]);
        const bool mayEnd = send(window, WM_QUERYENDSESSION) != 0;
        send(window, WM_ENDSESSION, FALSE);
        printYesOrNo(mayEnd);
    } else if (request == L"press" && count == 2) {
        pressKey(words[1]);
    } else if (request == L"type" && count == 2) {
        typeText(words[1]);
    } else if ((request == L"click" || request == L"ctrl-click") && count == 4) {
        clickAt(number(2), number(3), number(1), request == L"ctrl-click");
    } else if (request == L"drag" && count == 5) {
        dragFrame(number(1), number(2), number(3), number(4));
    } else if (request == L"wheel" && count == 4) {
        turnWheel(number(2), number(3), number(1));
    } else if (kOfControl.contains(request) && count == 3) {
        kOfControl.at(request)(control());
    } else if (kOfRow.contains(request) && count == 4) {
        kOfRow.at(request)(control(), number(3));
    } else if (kOfCell.contains(request) && count == 5) {
        kOfCell.at(request)(control(), number(3), number(4));
    } else {
        return false;
    }
    return true;
}

std::vector<std::wstring> wordsOf(const std::string& line)
{
    std::vector<std::wstring> words(1);
    for (const wchar_t letter : wide(line)) {
        if (letter == L'\t') {
            words.emplace_back();
        } else {
            words.back() += letter;
        }
    }
    return words;
}

int answer(const std::string& line)
{
    try {
        if (look(wordsOf(line))) {
            return 0;
        }
        std::cerr << "peek: not a request: " << line << '\n';
        return 2;
    } catch (const Missing& missing) {
        std::cerr << "peek: there is no " << missing.what << '\n';
        return 1;
    } catch (const std::exception& error) {
        std::cerr << "peek: " << line << ": " << error.what() << '\n';
        return 2;
    }
}

} // namespace

DWORD WINAPI stay(void*)
{
    Sleep(INFINITE);
    return 0;
}

/// Whichever program asks for the runtime's desktop first starts it, waits for it for ten seconds, and goes on without: on a
/// busy machine its windows never come then. This program waits for as long as it takes, before any other.
///
/// The desktop goes when it believes to be alone, as it has as many threads as there are users of it; while it starts, that
/// may be so by chance, and who comes as it goes waits for ever. Threads that stay are users too.
void startDesktop()
{
    constexpr int kMoreThanTheDesktopHas = 10;
    for (int i = 0; i < kMoreThanTheDesktopHas; ++i) {
        CloseHandle(CreateThread(nullptr, 0, stay, nullptr, 0, nullptr));
    }
    wchar_t line[] = L"explorer.exe /desktop";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES; // none: it stays
    PROCESS_INFORMATION desktop{};
    if (CreateProcessW(nullptr, line, nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr, &startup,
                       &desktop))
    {
        WaitForInputIdle(desktop.hProcess, INFINITE);
        CloseHandle(desktop.hThread);
        CloseHandle(desktop.hProcess);
    }
}

} // namespace peek

int main()
{
    std::cerr << "peek: here\n";
    peek::startDesktop();
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    for (std::string line; std::getline(std::cin, line);) {
        const int code = peek::answer(line);
        std::printf("\x04%d\n", code);
        std::fflush(stdout);
    }
}
