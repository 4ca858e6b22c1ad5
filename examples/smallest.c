/* The smallest panel: the rules of one folder, and buttons to add, edit and drop one.
 *
 *   smallest FOLDER
 */
#include <corvane.h>

#include <commctrl.h>

#include <stdlib.h>

enum { LIST = 100, ADD, EDIT, DROP };

static PathList* folders; /* what the page shows */

static void layOut(HWND window)
{
    RECT area;
    int button;
    GetClientRect(window, &area);
    MoveWindow(GetDlgItem(window, LIST), 8, 8, area.right - 16, area.bottom - 52, TRUE);
    for (button = ADD; button <= DROP; button++) {
        MoveWindow(GetDlgItem(window, button), 8 + (button - ADD) * 108, area.bottom - 36, 100, 28, TRUE);
    }
}

static void make(HWND window, const wchar_t* kind, const wchar_t* text, DWORD style, int id)
{
    CreateWindowExW(0, kind, text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, 0, 0, 0, 0, window,
                    (HMENU)(INT_PTR)id, GetModuleHandleW(NULL), NULL);
}

static LRESULT CALLBACK panel(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const NMHDR* note = (const NMHDR*)lParam;
    switch (message) {
    case WM_CREATE:
        make(window, WC_LISTVIEWW, L"", LVS_REPORT | LVS_SHOWSELALWAYS | WS_BORDER, LIST);
        make(window, L"BUTTON", L"Add...", 0, ADD);
        make(window, L"BUTTON", L"Edit...", WS_DISABLED, EDIT);
        make(window, L"BUTTON", L"Drop", WS_DISABLED, DROP);
        initializeListCtrl(window, LIST, folders); /* the columns, and the rules that are stored */
        return 0;
    case WM_SIZE:
        layOut(window);
        return 0;
    case WM_COMMAND:
        switch (LOWORD(wParam)) {
        case ADD:
            addToListCtrl(window, LIST, NULL, folders); /* null: for anyone; or an account's SID */
            break;
        case EDIT:
            editFromListCtrl(window, LIST);
            break;
        case DROP:
            dropFromListCtrl(window, LIST);
            break;
        }
        return 0;
    case WM_NOTIFY:
        if (note->idFrom == LIST && note->code == LVN_ITEMCHANGED) {
            checkForButtons(window, LIST, EDIT, DROP, 0); /* usable while a row is selected */
        } else if (note->idFrom == LIST && note->code == LVN_COLUMNCLICK) {
            sortListCtrl(window, LIST, ((const NMLISTVIEW*)lParam)->iSubItem);
        }
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE before, LPWSTR folder, int show)
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
    WNDCLASSW kind = {0};
    MSG message;
    (void)before;
    InitCommonControlsEx(&controls);
    folders = malloc(sizeof *folders); /* has room for one folder */
    folders->count = 1;
    folders->paths[0] = folder;
    kind.lpfnWndProc = panel;
    kind.hInstance = instance;
    kind.hCursor = LoadCursorW(NULL, (const wchar_t*)IDC_ARROW);
    kind.hbrBackground = (HBRUSH)(COLOR_BTNFACE + 1);
    kind.lpszClassName = L"smallest";
    RegisterClassW(&kind);
    ShowWindow(CreateWindowExW(0, kind.lpszClassName, L"Smallest panel", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                               CW_USEDEFAULT, 760, 320, NULL, NULL, instance, NULL),
               show);
    while (GetMessageW(&message, NULL, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    free(folders);
    return 0; /* storing the chain that getDataModified gives is the panel's act: see quota_report.cpp */
}
