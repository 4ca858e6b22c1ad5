// Openings of each dialog, after which nothing more is held than before.
#include "res/resource.h"
#include "tests/stress/dialogs.h"
#include "tests/stress/monkey.h"
#include "tests/stress/stress.h"
#include "tests/support/leak_count.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <commctrl.h>
#include <psapi.h>

namespace {

constexpr int kWarmUp = 20;
constexpr int kSeries = 3; // caches fill late; what leaks grows in each

DWORD modules()
{
    HMODULE loaded[1];
    DWORD bytes = 0;
    EnumProcessModules(GetCurrentProcess(), loaded, sizeof loaded, &bytes);
    return bytes / sizeof loaded[0];
}

/// Opens an editor's entry dialog on its first row, or whatever the first button does, before all is cancelled.
std::vector<Monkey::Act> deeper()
{
    return {[](HWND front) {
        for (const int list : {IDC_POLICY_LIST, IDC_NOTIFICATIONS_LIST}) {
            if (GetDlgItem(front, IDC_POLICY_EDIT) != nullptr && GetDlgItem(front, list) != nullptr) {
                ListView_SetItemState(GetDlgItem(front, list), 0, LVIS_SELECTED, LVIS_SELECTED);
                PostMessageW(front, WM_COMMAND, IDC_POLICY_EDIT, 0);
            }
        }
    }};
}

} // namespace

TEST(EditorsLeaks, NothingGrows)
{
    Monkey monkey(stress::seed());
    DialogWorld world(5);
    DialogWorld::ownChooser = true;
    for (const OpenedDialog& dialog : DialogWorld::dialogs()) {
        const auto open = [&](long long times) {
            for (long long i = 0; i < times; ++i) {
                monkey.play(deeper(), 0, dialog.open);
                world.fills.forget();
                world.store.takeCalls();
                stress::alive(dialog.name.c_str());
            }
        };
        open(kWarmUp);
        LeakCount::now(); // finds its functions
        LeakCount before;
        LeakCount after;
        DWORD modulesBefore = 0;
        DWORD modulesAfter = 0;
        for (int series = 0; series < kSeries; ++series) {
            before = LeakCount::now();
            modulesBefore = modules();
            open(stress::count());
            after = LeakCount::now();
            modulesAfter = modules();
            if (after == before && modulesAfter == modulesBefore) {
                break;
            }
        }
        EXPECT_EQ(after, before) << dialog.name;
        EXPECT_EQ(modulesAfter, modulesBefore) << dialog.name;
        std::printf("%s: %lld openings\n", dialog.name.c_str(), stress::count());
        std::fflush(stdout);
    }
}
