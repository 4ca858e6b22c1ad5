// The sample panel as a person uses it, through its window and its notifications, beside a bare window of the same
// template. Each step counts until the window has painted.
//   panel_bench [--sizes=1000,10000,100000] [--rounds=N] [--times]
// Exit code 1 when the two did not show the same rows.
#include "bench/rules/bench_store.h"
#include "bench/support/list_view.h"
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "side.h"

#include <commctrl.h>
#include <objbase.h>

#include <array>
#include <cstdio>
#include <cwchar>
#include <iterator>

namespace {

struct Step {
    const char* name;
    void (PanelSide::*work)();
    bool everySecondSelected; ///< before it
};

constexpr std::array kSteps{
    Step{"open", &PanelSide::open, false},          Step{"select all", &PanelSide::selectAll, false},
    Step{"one click", &PanelSide::clickOne, false}, Step{"sort by heading", &PanelSide::sort, false},
    Step{"edit", &PanelSide::edit, false},          Step{"drop half", &PanelSide::drop, true},
    Step{"apply", &PanelSide::apply, false},        Step{"close", &PanelSide::close, false},
    Step{"start again", &PanelSide::open, false}};
using Tallies = std::array<Tally, kSteps.size()>;
using Shown = std::array<std::uint64_t, kSteps.size()>;

Shown live(PanelSide& side, Tallies& tallies)
{
    Shown shown{};
    for (std::size_t step = 0; step < kSteps.size(); ++step) {
        if (kSteps[step].everySecondSelected) {
            list_view::selectOnly(side.list(), -1);
            for (int row = 1; row < list_view::rowCount(side.list()); row += 2) {
                list_view::select(side.list(), row, true);
            }
            settle(GetParent(side.list()));
        }
        tallies[step].add(timed([&] { (side.*kSteps[step].work)(); }));
        if (kSteps[step].work != &PanelSide::close) {
            shown[step] = list_view::hashOfRows(side.list(), {0, 3});
        }
    }
    side.close();
    MSG end;
    while (PeekMessageW(&end, nullptr, 0, 0, PM_REMOVE)) { // a panel that closes ends its program
    }
    benchStoreReleaseAll();
    return shown;
}

struct Search {
    const wchar_t* caption;
    HWND found;
};

BOOL CALLBACK compareCaption(HWND window, LPARAM parameter)
{
    auto& search = *reinterpret_cast<Search*>(parameter);
    wchar_t text[64];
    GetWindowTextW(window, text, static_cast<int>(std::size(text)));
    if (std::wcscmp(text, search.caption) == 0) {
        search.found = window;
    }
    return search.found == nullptr ? TRUE : FALSE;
}

} // namespace

HWND windowOfThread(const wchar_t* caption)
{
    Search search{caption, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), compareCaption, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

int main(int count, char** arguments)
{
    Options options{.sizes = {1000, 10000, 100000}};
    if (!readOptions(count, arguments, 100, 1000000, options)) {
        return 2;
    }
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    std::vector<Comparison> comparisons;
    bool allSame = true;
    for (const int rules : options.sizes) {
        std::fprintf(stderr, "%d rules\n", rules);
        benchStoreServe(rules, rules / 100, false);
        const auto sample = samplePanel();
        const auto bare = barePanel();
        Tallies samples;
        Tallies bares;
        for (int round = 0; round < options.roundsOf(rules); ++round) {
            Shown shown[2];
            for (const int turn : {round, round + 1}) { // each goes first as often as the other
                shown[turn % 2] = turn % 2 == 0 ? live(*sample, samples) : live(*bare, bares);
            }
            allSame = allSame && shown[0] == shown[1];
        }
        for (std::size_t step = 0; step < kSteps.size(); ++step) {
            comparisons.push_back({kSteps[step].name, rules, samples[step], bares[step]});
        }
    }
    printComparisons("rules", comparisons, options.times);
    CoUninitialize();
    if (!allSame) {
        std::fprintf(stderr, "The two did not show the same rows\n");
        return 1;
    }
    return 0;
}
