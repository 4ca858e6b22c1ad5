// Opening each policy editor, beside a dialog of the same template whose list is given the same rows by nobody but
// the control: texts made beforehand, redraw off, no store. Timed from the call to the end of WM_INITDIALOG; what
// follows, showing and painting, is the control's own on both sides.
//   policies_bench [--sizes=1000,10000] [--rounds=N] [--times]
// Exit code 1 when the two sides did not show the same rows.
#include "bench/support/list_view.h"
#include "bench/support/opening.h"
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "corvane.h"
#include "res/resource.h"
#include "tests/support/import_patch.h"
#include "tests/support/store_table.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

/// A control that sorts by itself looks through all rows for the place of each.
constexpr int kMostEntries = 10000;

/// Entries of any list, in the order of the store.
std::vector<std::wstring> entries;

const wchar_t* entryAt(uint32_t index)
{
    return index < entries.size() ? entries[index].c_str() : nullptr;
}

/// A store that costs next to nothing: it forwards to the table alone.
StoreTable thinStore()
{
    StoreTable table = emptyTable();
    const auto load = [] {
        return 1;
    };
    table.loadNotifications = table.loadExcludes = table.loadExcludeExts = table.loadMgrAccounts =
        table.loadBackupTools = load;
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
    return table;
}

struct Editor {
    const char* name;
    intptr_t (*open)(HWND);
    int templateId;
    int listId;
    bool sorted;
};

const Editor kEditors[] = {
    {"notifications", editNotifications, IDD_NOTIFICATIONS, IDC_NOTIFICATIONS_LIST, false},
    {"exception files", editExcludes, IDD_EXCLUDES, IDC_POLICY_LIST, false},
    {"blocked extensions", editExcludeExts, IDD_BLOCKED_EXTENSIONS, IDC_POLICY_LIST, false},
    {"administrative accounts", editMgrAccounts, IDD_ADMINISTRATIVE_ACCOUNTS, IDC_POLICY_LIST, false},
    {"backup tools", editBackupTools, IDD_BACKUP_TOOLS, IDC_POLICY_LIST, true}};

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
    const int rows = list_view::rowCount(list);
    for (int i = 0; i < rows; ++i) {
        Row row;
        row.data = list_view::dataOf(list, i);
        for (size_t column = 0; column < content.columns.size(); ++column) {
            row.cells.emplace_back(list_view::textOf(list, i, static_cast<int>(column)));
        }
        content.rows.push_back(std::move(row));
    }
    return content;
}

std::function<void(HWND)> looking(Content* content)
{
    return content != nullptr ? [content](HWND list) { *content = contentOf(list); } : std::function<void(HWND)>{};
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
    list_view::setRedraw(list, false);
    for (const size_t index : order) {
        const Row& row = content.rows[index];
        wchar_t* cells[8];
        std::transform(row.cells.begin(), row.cells.end(), cells,
                       [](const std::wstring& cell) { return const_cast<wchar_t*>(cell.c_str()); });
        list_view::insert(list, 0, {cells, row.cells.size()}, row.data);
    }
    list_view::setRedraw(list, true);
}

// The last thing that an editor does in WM_INITDIALOG is to disable its two buttons. A hook on the message would cost
// more than all the rest: it is called for every message to the list.
BOOL WINAPI disabling(HWND window, BOOL enable)
{
    const BOOL before = EnableWindow(window, enable);
    dialogReady();
    return before;
}

Time openCorvane(const Editor& editor, Content* look = nullptr)
{
    return timedOpening([&] { editor.open(nullptr); }, editor.listId, looking(look));
}

Time openBare(const Editor& editor, const Content& content, const std::vector<size_t>& order,
              Content* look = nullptr)
{
    const auto fill = [&](HWND dialog) {
        HMODULE host = GetModuleHandleW(L"quota"); // every editor asks for icons: it is no affair of the list
        for (const int icon : {138, 139, 140}) {
            LoadIconW(host, MAKEINTRESOURCEW(icon));
        }
        fillBare(GetDlgItem(dialog, editor.listId), content, order);
        for (const int button : {IDC_POLICY_EDIT, IDC_POLICY_REMOVE}) {
            EnableWindow(GetDlgItem(dialog, button), FALSE);
        }
    };
    return timedOpening([&] { openBareDialog(editor.templateId, fill); }, editor.listId, looking(look));
}

/// What a list that comes sorted costs before its first row: the texts copied and sorted by the standard library.
Time sortEntries()
{
    std::vector<std::wstring> sorted;
    return timed([&sorted] {
        sorted = entries;
        std::sort(sorted.begin(), sorted.end(), [](const std::wstring& a, const std::wstring& b) {
            return _wcsicmp(a.c_str(), b.c_str()) > 0;
        });
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
bool measure(const Editor& editor, int count, int rounds, std::vector<Comparison>& comparisons)
{
    Content content;
    openCorvane(editor, &content);

    // The bare control gets the rows from the lowest to the topmost. One that sorts by itself then finds each place
    // at once; its own way, in the order of the store, is timed beside it.
    std::vector<size_t> upwards(content.rows.size());
    std::iota(upwards.rbegin(), upwards.rend(), 0);
    Content bare;
    openBare(editor, content, upwards, &bare);
    bool same = bare.rows == content.rows;

    Tally corvane;
    Tally control;
    Tally sorting;
    for (int round = 0; round < rounds; ++round) {
        for (const int turn : {round, round + 1}) { // each goes first as often as the other
            turn % 2 == 0 ? corvane.add(openCorvane(editor))
                          : control.add(openBare(editor, content, upwards));
        }
        if (editor.sorted) {
            sorting.add(sortEntries());
        }
    }
    comparisons.push_back({editor.name, count, corvane, control});
    if (editor.sorted) {
        std::vector<size_t> byStore(content.rows.size());
        std::iota(byStore.begin(), byStore.end(), 0);
        std::sort(byStore.begin(), byStore.end(),
                  [&](size_t a, size_t b) { return content.rows[a].data < content.rows[b].data; });
        comparisons.push_back({std::string(editor.name) + ", the sorting alone", count, sorting, control});
        Content itsOwn;
        Tally own;
        own.add(openBare(editor, content, byStore, &itsOwn));
        comparisons.push_back({std::string(editor.name) + " *", count, corvane, own});
        same = same && itsOwn.rows == content.rows;
    }
    return same;
}

} // namespace

int main(int count, char** arguments)
{
    Options options{.sizes = {1000, 10000}};
    if (!readOptions(count, arguments, 1, kMostEntries, options)) {
        return 2;
    }
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    const StoreTable store = thinStore();
    installStore(&store);
    const ImportPatch patch(ImportPatch::corvane(), "EnableWindow", disabling);
    std::vector<Comparison> comparisons;
    bool same = true;
    for (const int size : options.sizes) {
        makeEntries(size);
        for (const Editor& editor : kEditors) {
            std::fprintf(stderr, "%s, %d entries\n", editor.name, size);
            same = measure(editor, size, options.roundsOf(size), comparisons) && same;
        }
    }
    installStore(nullptr);
    printComparisons("entries", comparisons, options.times);
    std::printf(
        "* beside a control that is given the rows in the order of the store and sorts them by itself\n");
    if (!same) {
        std::fprintf(stderr, "The two sides did not show the same rows\n");
        return 1;
    }
    return 0;
}
