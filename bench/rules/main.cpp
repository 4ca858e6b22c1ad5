// corvane's rule list beside the bare control and beside the straightforward way, in one process.
//   corvane_bench [--sizes=1000,10000,100000] [--rounds=N] [--no-row-by-row] [--times]
// Exit code 1 when the sides did not show the same.
#include "bench_store.h"
#include "frame/platform.h"
#include "table.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct Options {
    std::vector<int> sizes{1000, 10000, 100000};
    int rounds = 0; ///< 0: more for small lists, whose times are short
    bool rowByRow = true;
    bool times = false;
};

/// The straightforward way is left out where its slowest measure would take longer.
constexpr double kPatience = 60;

bool readOptions(int count, char** arguments, Options& options)
{
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument.starts_with("--sizes=")) {
            options.sizes.clear();
            for (std::size_t at = 8; at < argument.size(); ++at) {
                options.sizes.push_back(std::atoi(argument.c_str() + at));
                at = std::min(argument.find(',', at), argument.size());
            }
        } else if (argument.starts_with("--rounds=")) {
            options.rounds = std::atoi(argument.c_str() + 9);
        } else if (argument == "--no-row-by-row") {
            options.rowByRow = false;
        } else if (argument == "--times") {
            options.times = true;
        } else {
            std::fprintf(stderr, "Unknown option: %s\n", argument.c_str());
            return false;
        }
    }
    const bool sizesFit = std::all_of(options.sizes.begin(), options.sizes.end(), [](int size) {
        return size >= 100 && size % 100 == 0 && size <= 1000000;
    });
    if (!sizesFit || options.sizes.empty() || options.rounds < 0) {
        std::fprintf(stderr, "Sizes are hundreds, up to 1000000\n");
        return false;
    }
    return true;
}

int roundsOf(const Options& options, int rules)
{
    return options.rounds != 0 ? options.rounds : rules <= 1000 ? 25 : rules <= 10000 ? 11 : 5;
}

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
        Tally corvaneTally;
        Tally bareTally;
        const int rounds = roundsOf(m_options, workload.rules);
        for (int round = 0; round < rounds; ++round) {
            // Each goes first as often as the other.
            for (const int turn : {round, round + 1}) {
                const bool isCorvane = turn % 2 == 0;
                live(*(isCorvane ? corvane : bare), folders, isCorvane ? corvaneTally : bareTally);
            }
        }
        Times times{corvaneTally.seconds(), bareTally.seconds(), std::nullopt};
        if (m_options.rowByRow && endsInTime(workload, smaller, smallerRules)) {
            Tally tally;
            for (int round = workload.rules <= 1000 ? 5 : 1; round > 0; --round) {
                live(*rowByRow, folders, tally);
            }
            times.rowByRow = tally.seconds();
        }
        return times;
    }

    bool allSame() const { return m_allSame; }

private:
    void live(Side& side, const Folders& folders, Tally& tally)
    {
        const Life life = runLife(m_window, side, folders.list());
        tally.add(life);
        if (!m_expected) {
            m_expected = life.shown;
        }
        m_allSame = m_allSame && life.shown == *m_expected;
    }

    // Quadratic work and a little more.
    static bool endsInTime(const Workload& workload, const Times* smaller, int smallerRules)
    {
        if (smaller == nullptr) {
            return true;
        }
        if (!smaller->rowByRow) {
            return false;
        }
        const double slowest = *std::max_element(smaller->rowByRow->begin(), smaller->rowByRow->end());
        const double times = static_cast<double>(workload.rules) / smallerRules;
        return slowest * times * times * 1.4 < kPatience;
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
    Options options;
    if (!readOptions(count, arguments, options)) {
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
    if (!bench.allSame()) {
        std::fprintf(stderr, "The sides did not show the same rows\n");
        return 1;
    }
    return 0;
}
