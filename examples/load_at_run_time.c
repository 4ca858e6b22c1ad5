/* Takes the functions of a corvane.dll in any folder by their names, and prints how many rules a folder has.
 *
 *   load_at_run_time C:\Program Files\Product\corvane.dll FOLDER
 */
#include <corvane.h>

#include <commctrl.h>

#include <stdio.h>

typedef void (*InitializeList)(HWND dialog, int listId, const PathList* paths);
typedef int (*CountItems)(HWND dialog, int listId);

enum { LIST = 100 };

int wmain(int count, wchar_t** words)
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
    PathList folders = {1, {NULL}};
    HMODULE library;
    InitializeList initializeList;
    CountItems countRows;
    HWND window;
    if (count != 3) {
        fprintf(stderr, "load_at_run_time CORVANE_DLL FOLDER\n");
        return 2;
    }
    /* The flag has lornix.dll looked for beside corvane.dll, where it belongs, and not beside this program. */
    library = LoadLibraryExW(words[1], NULL, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == NULL) {
        fprintf(stderr, "The library cannot be loaded: error %lu\n", GetLastError());
        return 1;
    }
    initializeList = (InitializeList)(void (*)(void))GetProcAddress(library, "initializeListCtrl");
    countRows = (CountItems)(void (*)(void))GetProcAddress(library, "countItems");
    if (initializeList == NULL || countRows == NULL) {
        fprintf(stderr, "This corvane.dll is another one.\n");
        return 1;
    }
    InitCommonControlsEx(&controls);
    /* Any window with a list view in it will do; nobody needs to see it. */
    window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, NULL, NULL, NULL, NULL);
    CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | LVS_REPORT, 0, 0, 0, 0, window, (HMENU)(INT_PTR)LIST,
                    NULL, NULL);
    folders.paths[0] = words[2];
    initializeList(window, LIST, &folders);
    printf("%d rules\n", countRows(window, LIST));
    DestroyWindow(window);
    FreeLibrary(library);
    return 0;
}
