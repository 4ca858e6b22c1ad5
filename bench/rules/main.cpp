// corvane's rule list beside the bare control and beside the straightforward way, in one process.
//   rules_bench [--sizes=1000,10000,100000] [--rounds=N] [--no-row-by-row] [--times]
// Exit code 1 when the sides did not show the same.
#include "bench/support/list_view.h"
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "bench_store.h"
#include "panel_measures.h"
#include "rule_table.h"

#include <algorithm>
#include <cstdio>

namespace {

class Bench {
public:
    Bench(HWND window, const Options& options)
        : m_window(window)
        , m_options(options)
    {
    }

    /// @param smaller  times of the same workload with fewer rules, null when there are none.
    Times run(const Workload& workload, const Times* smaller, int smallerRules)
    {
        std::fprintf(stderr, "%d rules in %d folders\n", workload.rules, workload.folders);
        benchStoreServe(workload.rules, workload.folders, workload.sameLimit);
        const Folders folders(workload.folders);
        const auto corvane = corvaneSide();
        const auto bare = bareSide(folders.list());
        const auto rowByRow = rowByRowSide();
        m_expected.reset();
        Lives corvaneLives;
        Lives bareLives;
        const int rounds = m_options.roundsOf(workload.rules);
        for (int round = 0; round < rounds; ++round) {
            // Each goes first as often as the other.
            for (const int turn : {round, round + 1}) {
                const bool isCorvane = turn % 2 == 0;
                live(*(isCorvane ? corvane : bare), folders, isCorvane ? corvaneLives : bareLives);
            }
        }
        Times times{corvaneLives.seconds(), bareLives.seconds(), std::nullopt};
        if (m_options.rowByRow && toBeMeasured(workload, smaller, smallerRules)) {
            Lives lives;
            for (int round = workload.rules <= 1000 ? 5 : 1; round > 0; --round) {
                live(*rowByRow, folders, lives);
            }
            times.rowByRow = lives.seconds();
        }
        return times;
    }

    bool allSame() const { return m_allSame; }

private:
    void live(Side& side, const Folders& folders, Lives& lives)
    {
        const Life life = runLife(m_window, side, folders.list());
        lives.add(life);
        if (!m_expected) {
            m_expected = life.shown;
        }
        m_allSame = m_allSame && life.shown == *m_expected;
    }

    // Quadratic work.
    static bool toBeMeasured(const Workload& workload, const Times* smaller, int smallerRules)
    {
        if (smaller == nullptr) {
            return true;
        }
        const double times = static_cast<double>(workload.rules) / smallerRules;
        const auto& before = smaller->rowByRow;
        return before && endsInTime(*std::max_element(before->begin(), before->end()), times * times);
    }

    HWND m_window;
    const Options& m_options;
    std::optional<decltype(Life::shown)> m_expected;
    bool m_allSame = true;
};

void printTimes(const std::vector<SizeTimes>& sizes)
{
    for (const SizeTimes& size : sizes) {
        for (std::size_t m = 0; m < kMeasures.size(); ++m) {
            std::fprintf(
                stderr, "%-24s %7d  %9.1f %9.1f   %9.1f %9.1f us per 1000 rules\n", kMeasures[m], size.rules,
                size.manyFolders.corvane[m] * 1e9 / size.rules, size.manyFolders.bare[m] * 1e9 / size.rules,
                size.oneFolder.corvane[m] * 1e9 / size.rules, size.oneFolder.bare[m] * 1e9 / size.rules);
        }
    }
}

} // namespace

int main(int count, char** arguments)
{
    Options options{.sizes = {1000, 10000, 100000}};
    if (!readOptions(count, arguments, 100, 1000000, options)) {
        return 2;
    }
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    HWND window = CreateWindowExW(0, L"Static", L"corvane bench", WS_POPUP | WS_VISIBLE, 0, 0, 800, 600,
                                  nullptr, nullptr, nullptr, nullptr);

    Bench bench(window, options);
    std::vector<SizeTimes> sizes;
    for (const int rules : options.sizes) {
        const SizeTimes* smaller = sizes.empty() ? nullptr : &sizes.back();
        const int smallerRules = smaller != nullptr ? smaller->rules : 0;
        SizeTimes size;
        size.rules = rules;
        size.manyFolders = bench.run({rules, rules / 100, false},
                                     smaller != nullptr ? &smaller->manyFolders : nullptr, smallerRules);
        size.oneFolder =
            bench.run({rules, 1, true}, smaller != nullptr ? &smaller->oneFolder : nullptr, smallerRules);
        sizes.push_back(size);
    }
    if (options.times) {
        printTimes(sizes);
    }
    printTable(sizes);
    std::printf("\nA rule for a group, copied to all members; a list whose parent looks at the selection "
                "with each row\n"
                "that changes, and enables two buttons.\n\n");
    printComparisons("rows", measurePanel(window, options), options.times);
    if (!bench.allSame()) {
        std::fprintf(stderr, "The sides did not show the same rows\n");
        return 1;
    }
    return 0;
}
