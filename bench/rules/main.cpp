// corvane's rule list beside the bare control and beside the straightforward way, in one process.
//   rules_bench [--sizes=1000,10000,100000] [--rounds=N] [--no-row-by-row] [--times] [--memory]
// Exit code 1 when the sides did not show the same.
#include "bench/support/list_view.h"
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "bench_store.h"
#include "measure.h"
#include "panel_measures.h"
#include "parts.h"

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

    /// Runs one workload at all sizes.
    /// @param manyFolders  100 rules in each; otherwise one folder with one limit for as many accounts.
    std::vector<Comparison> run(bool manyFolders)
    {
        std::vector<Comparison> comparisons;
        std::optional<double> slowest; // of the straightforward way, at the size before
        int fewer = 0;
        for (const int rules : m_options.sizes) {
            const Folders folders(manyFolders ? rules / 100 : 1);
            std::fprintf(stderr, "%d rules, %s\n", rules, manyFolders ? "many folders" : "one folder");
            benchStoreServe(rules, folders.count(), !manyFolders);
            Tallies corvane;
            Tallies bare;
            turns(folders, m_options.roundsOf(rules), corvane, bare);
            std::optional<Tallies> rowByRow;
            // Quadratic work.
            const double times = fewer != 0 ? static_cast<double>(rules) / fewer : 0;
            if (m_options.rowByRow && (fewer == 0 || endsInTime(slowest, times * times))) {
                rowByRow = straightforward(folders, rules <= 1000 ? 5 : 1);
            }
            slowest.reset();
            for (std::size_t m = 0; m < kMeasures.size(); ++m) {
                comparisons.push_back(
                    {std::string(kMeasures[m]) + (manyFolders ? ", many folders" : ", one folder"), rules,
                     corvane[m], bare[m], rowByRow ? std::optional((*rowByRow)[m]) : std::nullopt});
                if (rowByRow) {
                    slowest = std::max(slowest.value_or(0), (*rowByRow)[m].median());
                }
            }
            fewer = rules;
        }
        return comparisons;
    }

    bool allSame() const { return m_allSame; }

private:
    void turns(const Folders& folders, int rounds, Tallies& corvane, Tallies& bare)
    {
        const auto corvanes = corvaneSide();
        const auto bares = bareSide(folders.list());
        m_expected.reset();
        for (int round = 0; round < rounds; ++round) {
            // Each goes first as often as the other.
            for (const int turn : {round, round + 1}) {
                turn % 2 == 0 ? live(*corvanes, folders, corvane) : live(*bares, folders, bare);
            }
        }
    }

    Tallies straightforward(const Folders& folders, int rounds)
    {
        const auto side = rowByRowSide();
        Tallies tallies;
        for (int round = 0; round < rounds; ++round) {
            live(*side, folders, tallies);
        }
        return tallies;
    }

    void live(Side& side, const Folders& folders, Tallies& tallies)
    {
        const Life life = runLife(m_window, side, folders.list());
        for (std::size_t m = 0; m < kMeasures.size(); ++m) {
            tallies[m].add(life.times[m]);
        }
        if (!m_expected) {
            m_expected = life.shown;
        }
        m_allSame = m_allSame && life.shown == *m_expected;
    }

    HWND m_window;
    const Options& m_options;
    std::optional<decltype(Life::shown)> m_expected;
    bool m_allSame = true;
};

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

    if (options.memory) {
        printMemory(window, options);
    }
    Bench bench(window, options);
    std::vector<Comparison> comparisons = bench.run(true);
    for (const auto& more : {bench.run(false), measureParts(window, options), measurePanel(window, options)})
    {
        comparisons.insert(comparisons.end(), more.begin(), more.end());
    }
    printComparisons("rules", comparisons, options.times);
    if (!bench.allSame()) {
        std::fprintf(stderr, "The sides did not show the same rows\n");
        return 1;
    }
    return 0;
}
