// Opening the list of running processes, beside a dialog of the same template whose list gets the same snapshot's rows
// by nobody but the control: redraw off, and the library's own two messages a row. Timed from the call to the end of WM_INITDIALOG.
//   processes_bench [--sizes=100,1000] [--rounds=N] [--times]
// The sizes are those of a made-up snapshot, which costs next to nothing; beside them stands the machine's own.
// Exit code 1 when the two sides did not show the same rows.
#include "bench/support/list_view.h"
#include "bench/support/opening.h"
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "corvane.h"
#include "res/resource.h"
#include "tests/support/import_patch.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <optional>
#include <string>
#include <string_view>
#include <tlhelp32.h>

namespace {

/// The control sorts by itself and looks through all rows for the place of each.
constexpr int kMostProcesses = 10000;

/// The snapshot's functions, as both sides call them.
struct Snapshot {
    decltype(CreateToolhelp32Snapshot)* create;
    decltype(Process32FirstW)* first;
    decltype(Process32NextW)* next;
};
constexpr Snapshot kMachine{CreateToolhelp32Snapshot, Process32FirstW, Process32NextW};

int processes = 0; ///< of the made-up snapshot
int nextProcess = 0;

HANDLE WINAPI createSnapshot(DWORD, DWORD)
{
    nextProcess = 0;
    return &nextProcess;
}

// A few programs run many times, as they do.
BOOL WINAPI nextEntry(HANDLE, PROCESSENTRY32W* entry)
{
    if (nextProcess == processes) {
        return FALSE;
    }
    const auto scattered = static_cast<unsigned>(nextProcess) * 2654435761u >> 8;
    entry->th32ProcessID = static_cast<DWORD>(++nextProcess) * 4;
    swprintf(entry->szExeFile, MAX_PATH, L"program %03u.exe", scattered % 300);
    return TRUE;
}

constexpr Snapshot kMadeUp{createSnapshot, nextEntry, nextEntry};
Snapshot snapshot = kMachine;

// The library looks the functions up at each opening.
FARPROC WINAPI lookUp(HMODULE module, const char* name)
{
    const auto address = [](auto* function) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
    };
    if (reinterpret_cast<UINT_PTR>(name) > 0xFFFF) { // below, it is a number
        const std::string_view wanted(name);
        if (wanted == "CreateToolhelp32Snapshot") {
            return address(snapshot.create);
        }
        if (wanted == "Process32FirstW") {
            return address(snapshot.first);
        }
        if (wanted == "Process32NextW") {
            return address(snapshot.next);
        }
    }
    return GetProcAddress(module, name);
}

// The last thing that the library does with a snapshot, and so in WM_INITDIALOG.
BOOL WINAPI closeSnapshot(HANDLE handle)
{
    const BOOL closed = handle == &nextProcess || CloseHandle(handle);
    dialogReady();
    return closed;
}

void fillBare(HWND dialog)
{
    HWND list = GetDlgItem(dialog, IDC_PROCESS_LIST);
    wchar_t heading[] = L"Process Name";
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    column.pszText = heading;
    column.cx = 310;
    SendMessageW(list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    ListView_SetExtendedListViewStyle(list, LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP |
                                                LVS_EX_LABELTIP);
    EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
    list_view::setRedraw(list, false);
    HANDLE taken = snapshot.create(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    LPARAM found = 0;
    for (BOOL more = snapshot.first(taken, &entry); more; more = snapshot.next(taken, &entry)) {
        wchar_t* const cells[] = {entry.szExeFile};
        LVITEMW item{};
        item.mask = LVIF_PARAM;
        item.iItem = list_view::insert(list, 0, cells, 0);
        item.lParam = found++;
        SendMessageW(list, LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
    closeSnapshot(taken);
    list_view::setRedraw(list, true);
}

/// What a side shows.
struct Shown {
    int rows = 0;
    std::uint64_t hash = 0;
};

/// @return whether both sides showed the same.
bool measure(const char* name, int rounds, std::vector<Comparison>& comparisons)
{
    Tally tallies[2];
    Shown shown[2];
    for (int round = 0; round < rounds; ++round) {
        for (const int turn : {round, round + 1}) { // each goes first as often as the other
            const int side = turn % 2;
            const auto look = [&](HWND list) {
                shown[side] = {list_view::rowCount(list), list_view::hashOfRows(list, {0})};
            };
            tallies[side].add(timedOpening(
                [&] {
                    side == 0 ? static_cast<void>(chooseProcess(nullptr))
                              : openBareDialog(IDD_PROCESS_CHOOSER, fillBare);
                },
                IDC_PROCESS_LIST, look));
        }
    }
    comparisons.push_back({name, shown[0].rows, tallies[0], tallies[1]});
    return shown[0].hash == shown[1].hash && shown[0].rows == shown[1].rows && shown[0].rows > 0;
}

} // namespace

int main(int count, char** arguments)
{
    Options options{.sizes = {100, 1000}};
    if (!readOptions(count, arguments, 1, kMostProcesses, options)) {
        return 2;
    }
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    const ImportPatch functions(ImportPatch::corvane(), "GetProcAddress", lookUp);
    const ImportPatch end(ImportPatch::corvane(), "CloseHandle", closeSnapshot);
    std::vector<Comparison> comparisons;
    bool same = measure("processes of the machine", options.roundsOf(0), comparisons);
    snapshot = kMadeUp;
    for (const int size : options.sizes) {
        processes = size;
        same = measure("processes made up", options.roundsOf(size), comparisons) && same;
    }
    printComparisons("processes", comparisons, options.times);
    if (!same) {
        std::fprintf(stderr, "The two sides did not show the same rows\n");
        return 1;
    }
    return 0;
}
