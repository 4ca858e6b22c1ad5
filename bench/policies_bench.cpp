// Opening each policy editor, beside a dialog of the same template whose list is given the same rows by nobody but
// the control: texts made beforehand, redraw off, no store. Timed from the call to the end of WM_INITDIALOG; what
// follows, showing and painting, is the control's own on both sides.
//   policies_bench [ENTRIES ...]     default 1000 10000; the smallest of several runs counts
// Exit code 1 when the two sides did not show the same rows.
#include "corvane.h"
#include "tests/support/import_patch.h"
#include "tests/support/store_table.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

/// Entries of any list, in the order of the store.
std::vector<std::wstring> entries;

const wchar_t* entryAt(uint32_t index)
{
    return index < entries.size() ? entries[index].c_str() : nullptr;
}

/// A store that costs next to nothing: it forwards to the table alone.
StoreTable thinStore()
{
    StoreTable table{};
    table.ODS = [](const char*) {
    };
    const auto load = [] {
        return 1;
    };
    const auto nothing = [] {
    };
    table.loadNotifications = table.loadExcludes = table.loadExcludeExts = table.loadMgrAccounts =
        table.loadBackupTools = load;
    table.freeNotifications = table.freeExcludes = table.freeExcludeExts = table.freeMgrAccounts =
        table.freeBackupTools = nothing;
    table.getNotificationsCount = [] {
        return static_cast<uint32_t>(entries.size());
    };
    table.getNotifications = table.getExcludes = table.getExcludeExtsPath = table.getMgrAccounts =
        table.getBackupTools = entryAt;
    table.getNAttr = [](uint32_t, uint32_t) -> const wchar_t* {
        return L"OFFICE\\runner";
    };
    table.getINAttr = [](uint32_t index, uint32_t attribute) {
        return attribute == 1 ? static_cast<int32_t>(index % 4) : static_cast<int32_t>(index);
    };
    table.getExcludeExtsSid = [](uint32_t) -> const void* {
        return nullptr;
    };
    return table;
}

struct Editor {
    const char* name;
    intptr_t (*open)(HWND);
    int templateId;
    int listId;
    bool sorted;
};

const Editor kEditors[] = {{"notifications", editNotifications, 142, 1015, false},
                           {"exception files", editExcludes, 146, 1011, false},
                           {"blocked extensions", editExcludeExts, 156, 1011, false},
                           {"administrative accounts", editMgrAccounts, 149, 1011, false},
                           {"backup tools", editBackupTools, 152, 1011, true}};

double now()
{
    LARGE_INTEGER ticks;
    LARGE_INTEGER perSecond;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&perSecond);
    return static_cast<double>(ticks.QuadPart) / static_cast<double>(perSecond.QuadPart);
}

/// What a list shows, read after one opening to be given to the bare control, and to compare the two.
struct Row {
    LPARAM data = 0;
    std::vector<std::wstring> cells;
    friend bool operator==(const Row&, const Row&) = default;
};

struct Column {
    std::wstring heading;
    int width = 0;
    int format = 0;
};

struct Content {
    std::vector<Column> columns;
    std::vector<Row> rows;
};

Content contentOf(HWND list)
{
    Content content;
    wchar_t text[512];
    for (int i = 0;; ++i) {
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
        column.pszText = text;
        column.cchTextMax = static_cast<int>(std::size(text));
        if (!SendMessageW(list, LVM_GETCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&column))) {
            break;
        }
        content.columns.push_back({text, column.cx, column.fmt});
    }
    const int rows = ListView_GetItemCount(list);
    for (int i = 0; i < rows; ++i) {
        Row row;
        LVITEMW item{};
        item.iItem = i;
        item.mask = LVIF_PARAM;
        SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        row.data = item.lParam;
        for (size_t column = 0; column < content.columns.size(); ++column) {
            item.iSubItem = static_cast<int>(column);
            item.pszText = text;
            item.cchTextMax = static_cast<int>(std::size(text));
            SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
            row.cells.emplace_back(text);
        }
        content.rows.push_back(std::move(row));
    }
    return content;
}

/// The rows in the order in which the bare control is to get them, each at the top.
void fillBare(HWND list, const Content& content, const std::vector<size_t>& order)
{
    for (size_t i = 0; i < content.columns.size(); ++i) {
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
        column.pszText = const_cast<wchar_t*>(content.columns[i].heading.c_str());
        column.cx = content.columns[i].width;
        column.fmt = content.columns[i].format;
        column.iSubItem = static_cast<int>(i);
        SendMessageW(list, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
    }
    ListView_SetExtendedListViewStyle(list, LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP | LVS_EX_FULLROWSELECT |
                                                LVS_EX_LABELTIP);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    for (const size_t index : order) {
        const Row& row = content.rows[index];
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.pszText = const_cast<wchar_t*>(row.cells[0].c_str());
        item.lParam = row.data;
        const LRESULT at = SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        for (size_t column = 1; column < row.cells.size(); ++column) {
            item.iSubItem = static_cast<int>(column);
            item.pszText = const_cast<wchar_t*>(row.cells[column].c_str());
            SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(&item));
        }
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

/// What is timed: the opening of one dialog. Once it stands and nothing is left to do, it is looked at and closed.
struct Opening {
    int listId;
    Content* look;    ///< null: not wanted
    double ready = 0; ///< when WM_INITDIALOG was done
};
Opening* current = nullptr;

void CALLBACK whenIdle(HWND, UINT, UINT_PTR, DWORD)
{
    HWND dialog = GetActiveWindow();
    HWND list = dialog != nullptr ? GetDlgItem(dialog, current->listId) : nullptr;
    if (list == nullptr) {
        return;
    }
    if (current->look != nullptr) {
        *current->look = contentOf(list);
    }
    SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

// The last thing that an editor does in WM_INITDIALOG is to disable its two buttons. A hook on the message would cost
// more than all the rest: it is called for every message to the list.
BOOL WINAPI disabling(HWND window, BOOL enable)
{
    const BOOL before = EnableWindow(window, enable);
    current->ready = now();
    return before;
}

template <class Open>
double timed(int listId, Content* look, Open&& open)
{
    Opening opening{listId, look};
    current = &opening;
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, whenIdle);
    const double start = now();
    open();
    KillTimer(nullptr, timer);
    current = nullptr;
    return opening.ready - start;
}

struct BareFill {
    const Content* content;
    const std::vector<size_t>* order;
    int listId;
};

INT_PTR CALLBACK bareProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        const auto& fill = *reinterpret_cast<const BareFill*>(lParam);
        HMODULE host = GetModuleHandleW(L"quota"); // every editor asks for icons: it is no affair of the list
        for (const int icon : {138, 139, 140}) {
            LoadIconW(host, MAKEINTRESOURCEW(icon));
        }
        fillBare(GetDlgItem(dialog, fill.listId), *fill.content, *fill.order);
        for (const int button : {1008, 1006}) {
            EnableWindow(GetDlgItem(dialog, button), FALSE);
        }
        current->ready = now();
        return TRUE;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL) {
        EndDialog(dialog, 0);
        return TRUE;
    }
    return FALSE;
}

double openBare(const Editor& editor, const Content& content, const std::vector<size_t>& order, Content* look)
{
    HMODULE module = GetModuleHandleW(L"corvane");
    const auto* loaded = static_cast<LPCDLGTEMPLATEW>(
        LoadResource(module, FindResourceW(module, MAKEINTRESOURCEW(editor.templateId), RT_DIALOG)));
    const BareFill fill{&content, &order, editor.listId};
    return timed(editor.listId, look, [&] {
        DialogBoxIndirectParamW(nullptr, loaded, nullptr, bareProcedure, reinterpret_cast<LPARAM>(&fill));
    });
}

void makeEntries(int count)
{
    std::mt19937 random(4711);
    entries.clear();
    for (int i = 0; i < count; ++i) {
        wchar_t text[64];
        swprintf(text, std::size(text), L"%08x tool %d.exe", static_cast<unsigned>(random()), i);
        entries.emplace_back(text);
    }
}

/// @return whether both sides showed the same.
bool measure(const Editor& editor, int count)
{
    Content content;
    timed(editor.listId, &content, [&] { editor.open(nullptr); });

    // The bare control gets the rows from the lowest to the topmost. One that sorts by itself then finds each place
    // at once; its own way, in the order of the store, is timed beside it where that ends in time.
    std::vector<size_t> upwards(content.rows.size());
    std::iota(upwards.rbegin(), upwards.rend(), 0);
    Content bare;
    openBare(editor, content, upwards, &bare);

    const int rounds = count <= 1000 ? 21 : 9;
    double corvane = 1e9;
    double control = 1e9;
    for (int round = 0; round < rounds; ++round) {
        for (const int turn : {round, round + 1}) { // each goes first as often as the other
            double& best = turn % 2 == 0 ? corvane : control;
            best = std::min(best, turn % 2 == 0 ? timed(editor.listId, nullptr, [&] { editor.open(nullptr); })
                                                : openBare(editor, content, upwards, nullptr));
        }
    }
    std::printf("%-24s %7d %12.2f %12.2f %8.2f", editor.name, count, corvane * 1e3, control * 1e3,
                corvane / control);
    if (editor.sorted) {
        std::vector<size_t> byStore(content.rows.size());
        std::iota(byStore.begin(), byStore.end(), 0);
        std::sort(byStore.begin(), byStore.end(),
                  [&](size_t a, size_t b) { return content.rows[a].data < content.rows[b].data; });
        Content itsOwn;
        const double own = openBare(editor, content, byStore, &itsOwn);
        std::printf("   in the order of the store: %.2f, %.3f times that", own * 1e3, corvane / own);
        if (itsOwn.rows != content.rows) {
            return false;
        }
    }
    std::printf("\n");
    std::fflush(stdout);
    return bare.rows == content.rows;
}

} // namespace

int main(int count, char** arguments)
{
    std::vector<int> sizes;
    for (int i = 1; i < count; ++i) {
        sizes.push_back(std::atoi(arguments[i]));
    }
    if (sizes.empty()) {
        sizes = {1000, 10000};
    }
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    const StoreTable store = thinStore();
    installStore(&store);
    const ImportPatch patch(ImportPatch::corvane(), "EnableWindow", disabling);
    std::printf("%-24s %7s %12s %12s %8s\n", "opening", "entries", "corvane ms", "control ms", "ratio");
    bool same = true;
    for (const int size : sizes) {
        makeEntries(size);
        for (const Editor& editor : kEditors) {
            same = measure(editor, size) && same;
        }
    }
    installStore(nullptr);
    if (!same) {
        std::fprintf(stderr, "The two sides did not show the same rows\n");
        return 1;
    }
    return 0;
}
