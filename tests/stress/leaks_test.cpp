// Openings of each dialog, after which nothing more is held than before.
#include "res/resource.h"
#include "tests/stress/dialogs.h"
#include "tests/stress/monkey.h"
#include "tests/stress/quota_panel.h"
#include "tests/stress/stress.h"
#include "tests/support/leak_count.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <commctrl.h>
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <bitset>
#include <ostream>

namespace {

constexpr long long kWarmUp = 20; // or as many as count
constexpr int kSeries = 8;        // caches fill late; what leaks grows in each

DWORD modules()
{
    HMODULE loaded[1];
    DWORD bytes = 0;
    EnumProcessModules(GetCurrentProcess(), loaded, sizeof loaded, &bytes);
    return bytes / sizeof loaded[0];
}

DWORD threads()
{
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    DWORD own = 0;
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(all, &thread); more; more = Thread32Next(all, &thread)) {
        own += thread.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(all);
    return own;
}

struct Held {
    LeakCount counted = LeakCount::now();
    DWORD modules = ::modules();
    DWORD threads = ::threads();

    /// Which of the numbers are higher than others.
    std::bitset<6> above(const Held& other) const
    {
        std::bitset<6> higher(counted.above(other.counted).to_ulong());
        higher[4] = modules > other.modules;
        higher[5] = threads > other.threads;
        return higher;
    }
    friend std::ostream& operator<<(std::ostream& out, const Held& held)
    {
        return out << held.counted << ", " << held.modules << " modules, " << held.threads << " threads";
    }
};

bool has(HWND dialog, int id)
{
    return GetDlgItem(dialog, id) != nullptr;
}

/// Opens an entry dialog on the first row of a list, or searches for accounts, before all is cancelled.
void goDeeper(HWND front)
{
    for (const int list : {IDC_POLICY_LIST, IDC_NOTIFICATIONS_LIST}) {
        if (has(front, list) && (has(front, IDC_POLICY_EDIT) || has(front, QuotaPanel::kEdit))) {
            ListView_SetItemState(GetDlgItem(front, list), 0, LVIS_SELECTED, LVIS_SELECTED);
            PostMessageW(front, WM_COMMAND, has(front, IDC_POLICY_EDIT) ? IDC_POLICY_EDIT : QuotaPanel::kEdit,
                         0);
        }
    }
    if (has(front, IDC_CHOOSER_NAME) && has(front, IDC_CHOOSER_LIST)) {
        click(front, IDC_CHOOSER_CUSTOM_BASE);
        type(front, IDC_CHOOSER_BASE, L"SERVER");
        click(front, IDOK);
    }
}

} // namespace

TEST(Leaks, NothingGrows)
{
    Monkey monkey(stress::seed());
    DialogWorld world(5, [&monkey](int bound) { return monkey.below(bound); }, [] { return 0; });
    DialogWorld::ownChooser = true;
    fillThreadLists();
    for (const OpenedDialog& dialog : world.dialogs()) {
        if (!stress::wanted(dialog.name) || dialog.leavesRecords) {
            continue;
        }
        const auto open = [&](long long times) {
            for (long long i = 0; i < times; ++i) {
                monkey.play({goDeeper}, 0, dialog.open);
                world.fills.forget();
                world.store.takeCalls();
                stress::alive(dialog.name.c_str());
            }
        };
        const ULONGLONG start = GetTickCount64();
        open(std::min(kWarmUp, stress::count()));
        Held(); // finds its functions
        std::bitset<6> growing;
        growing.set();
        testing::Message held;
        for (int series = 0; series < kSeries && growing.any(); ++series) {
            const Held before;
            open(stress::count());
            const Held after;
            growing &= after.above(before); // a cache that is emptied and filled again goes up and down
            held << "\n  before " << before << "\n  after  " << after;
        }
        EXPECT_TRUE(growing.none()) << dialog.name << held;
        std::printf("%s: %lld openings, %llu ms\n", dialog.name.c_str(), stress::count(),
                    GetTickCount64() - start);
        std::fflush(stdout);
    }
}
