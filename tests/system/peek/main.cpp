// Tells a script what stands in the windows of another program, and where: the script then clicks and types
// with the real mouse and keyboard. What the system tells windows by itself, it can tell as well.
//
//   peek windows                        the titles of all visible top-level windows
//   peek extent                         left, top, width and height of what they cover together
//   peek menu                           yes or no: whether a menu is open
//   peek text TITLE ID                  the text of a control
//   peek enabled TITLE ID               yes or no
//   peek checked TITLE ID               yes or no, of a check box or radio button
//   peek list TITLE ID                  the cells of a list view, tab-separated, a row a line
//   peek count TITLE ID                 how many rows a list view has
//   peek chosen TITLE ID                the selected rows of a list view, or entries of a list box, by number; the
//                                       text of the selected node of a tree
//   peek entries TITLE ID               the texts of a list box
//   peek parts TITLE ID                 the parts of a status bar, a line each
//   peek tree TITLE ID                  the nodes of a tree, a line each, children indented by tabs
//   peek focus TITLE                    id of the control that has the focus; "cell" for an edit inside a list view,
//                                       "filter" for one inside its header
//   peek point TITLE ID                 the middle of a control on the screen: x y
//   peek cell TITLE ID ROW COLUMN       the middle of a cell of a list view
//   peek header TITLE ID COLUMN         the middle of a column heading
//   peek filter TITLE ID COLUMN         the middle of the filter under a column heading
//   peek entry TITLE ID NUMBER          a place on an entry of a list box
//   peek close TITLE                    tells a window to close, as another program can at any time
//   peek endsession TITLE               yes or no: whether a window lets the session end, which does not end by that
//
// TITLE is how the title of a visible top-level window begins. Ends with 1 when there is no such window,
// control or row, with 2 when the call is wrong.
#include "lists.h"
#include "tree.h"
#include "window.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace peek {
namespace {

void printFocus(HWND window)
{
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    const HWND front = GetForegroundWindow();
    if (front != window || !GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) ||
        info.hwndFocus == nullptr)
    {
        throw Missing{"the focus in this window"};
    }
    const HWND parent = GetParent(info.hwndFocus);
    if (isA(parent, WC_LISTVIEWW)) {
        print(L"cell");
    } else if (isA(parent, WC_HEADERW)) {
        print(L"filter");
    } else {
        print(GetDlgCtrlID(info.hwndFocus));
    }
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

void printWindows()
{
    for (const HWND window : visibleWindows()) {
        print(titleOf(window));
    }
}

void printYesOrNo(bool yes)
{
    print(yes ? L"yes" : L"no");
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
        return findControl(words[1], std::stoi(words[2]));
    };
    const auto number = [&words](size_t at) {
        return std::stoi(words[at]);
    };
    if (request == L"windows" && count == 1) {
        printWindows();
    } else if (request == L"extent" && count == 1) {
        printExtent();
    } else if (request == L"menu" && count == 1) {
        printYesOrNo(menuIsOpen());
    } else if (request == L"focus" && count == 2) {
        printFocus(findWindow(words[1]));
    } else if (request == L"close" && count == 2) {
        send(findWindow(words[1]), WM_CLOSE);
    } else if (request == L"endsession" && count == 2) {
        const HWND window = findWindow(words[1]);
        const bool mayEnd = send(window, WM_QUERYENDSESSION) != 0;
        send(window, WM_ENDSESSION, FALSE);
        printYesOrNo(mayEnd);
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

} // namespace
} // namespace peek

int wmain(int count, wchar_t** words)
{
    try {
        if (count > 1 && peek::look({words + 1, words + count})) {
            return 0;
        }
        std::fprintf(stderr, "peek: not a request; see the top of peek/main.cpp\n");
        return 2;
    } catch (const peek::Missing& missing) {
        std::fprintf(stderr, "peek: there is no %s\n", missing.what.c_str());
        return 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "peek: %s\n", error.what());
        return 2;
    }
}
