/* The smallest panel: the rules of one folder, to be added, edited, dropped and stored.    smallest FOLDER */
#include <corvane.h>
#include <lornix_host.h>

#include <commctrl.h>

enum { LIST = 100, ADD, EDIT, DROP, APPLY };

static PathList folders; /* what the page shows: it has room for one folder */

/* Adding has turned backslashes into slashes, and the list would take the same folder for another one. */
static void turnBack(wchar_t* path)
{
    for (; *path != L'\0'; path++) {
        *path = *path == L'/' ? L'\\' : *path;
    }
}

static void apply(HWND window)
{
    QuotaRule* const chain = getDataModified(window, LIST); /* the list's: only lent */
    QuotaRule* rule;
    for (rule = chain; rule != NULL; rule = rule->next) {
        turnBack(rule->path);
    }
    if (!lornixStoreRules(&folders, chain)) {
        MessageBoxW(window, lornixLastError(), L"Smallest panel", MB_OK | MB_ICONERROR);
    }
}

static void make(HWND window, int id, const wchar_t* kind, const wchar_t* text, DWORD style)
{
    const int left = id == LIST ? 8 : 8 + (id - ADD) * 108;
    CreateWindowExW(0, kind, text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, left, id == LIST ? 8 : 248,
                    id == LIST ? 724 : 100, id == LIST ? 232 : 28, window, (HMENU)(INT_PTR)id, NULL, NULL);
}

static LRESULT CALLBACK panel(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const NMHDR* note = (const NMHDR*)lParam;
    switch (message) {
    case WM_CREATE:
        make(window, LIST, WC_LISTVIEWW, L"", LVS_REPORT | LVS_SHOWSELALWAYS | WS_BORDER);
        make(window, ADD, L"BUTTON", L"Add...", 0);
        make(window, EDIT, L"BUTTON", L"Edit...", WS_DISABLED);
        make(window, DROP, L"BUTTON", L"Drop", WS_DISABLED);
        make(window, APPLY, L"BUTTON", L"Apply", 0);
        initializeListCtrl(window, LIST, &folders); /* the columns, and the rules that are stored */
        return 0;
    case WM_COMMAND:
        if (LOWORD(wParam) == ADD) {
            addToListCtrl(window, LIST, NULL, &folders); /* null: for anyone; or an account's SID */
            turnBack(folders.paths[0]);
        } else if (LOWORD(wParam) == EDIT) {
            editFromListCtrl(window, LIST);
        } else if (LOWORD(wParam) == DROP) {
            dropFromListCtrl(window, LIST);
        } else if (LOWORD(wParam) == APPLY) {
            apply(window);
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
    folders.count = 1;
    folders.paths[0] = folder;
    kind.lpfnWndProc = panel;
    kind.hInstance = instance;
    kind.hCursor = LoadCursorW(NULL, (const wchar_t*)IDC_ARROW);
    kind.hbrBackground = (HBRUSH)(COLOR_BTNFACE + 1);
    kind.lpszClassName = L"smallest";
    RegisterClassW(&kind);
    ShowWindow(CreateWindowExW(0, kind.lpszClassName, L"Smallest panel", WS_CAPTION | WS_SYSMENU,
                               CW_USEDEFAULT, CW_USEDEFAULT, 760, 320, NULL, NULL, instance, NULL),
               show);
    while (GetMessageW(&message, NULL, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}
