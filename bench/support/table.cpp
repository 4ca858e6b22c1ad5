#include "bench/support/table.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

namespace {

/// No measure that is known to take longer is begun.
constexpr double kPatience = 60;

/// Cells of a line: the first to the left, the others to the right.
void line(const std::vector<std::string>& cells)
{
    constexpr int kWidths[] = {50, 9, 14, 13, 20};
    for (std::size_t i = 0; i < cells.size(); ++i) {
        std::printf("| %*s ", i == 0 ? -kWidths[i] : kWidths[i], cells[i].c_str());
    }
    std::printf("|\n");
}

std::string inDigits(double ratio)
{
    char text[32];
    std::snprintf(text, sizeof text, ratio < 10 ? "%.2f" : "%.0f", ratio);
    return text;
}

} // namespace

bool endsInTime(std::optional<double> smaller, double timesAsMuch)
{
    constexpr double kReserve = 1.4;
    return smaller && *smaller * timesAsMuch * kReserve < kPatience;
}

void printComparisons(const char* sizes, std::vector<Comparison> comparisons, bool times)
{
    std::map<std::string, std::size_t> firstSeen;
    for (const Comparison& comparison : comparisons) {
        firstSeen.try_emplace(comparison.measure, firstSeen.size());
    }
    std::sort(comparisons.begin(), comparisons.end(), [&](const Comparison& a, const Comparison& b) {
        return std::pair(firstSeen[a.measure], a.size) < std::pair(firstSeen[b.measure], b.size);
    });
    const bool rowByRow = std::any_of(comparisons.begin(), comparisons.end(),
                                      [](const Comparison& comparison) { return comparison.rowByRow; });
    const auto print = [rowByRow](std::vector<std::string> cells, std::string last) {
        if (rowByRow) {
            cells.push_back(std::move(last));
        }
        line(cells);
    };
    print({"measure", sizes, "corvane : bare", "half within"}, "row by row : corvane");
    print({"---", "---:", "---:", "---:"}, "---:");
    for (const Comparison& comparison : comparisons) {
        const Spread ratio = ratioOf(comparison.corvane, comparison.bare, comparison.clock);
        print({comparison.measure, std::to_string(comparison.size), inDigits(ratio.median),
               inDigits(ratio.low) + " - " + inDigits(ratio.high)},
              comparison.rowByRow
                  ? inDigits(ratioOf(*comparison.rowByRow, comparison.corvane, comparison.clock).median)
                  : "");
        if (times) {
            std::fprintf(stderr, "%-50s %9d  %12.3f %12.3f %12.3f ms\n", comparison.measure.c_str(),
                         comparison.size, comparison.corvane.median(comparison.clock) * 1e3,
                         comparison.bare.median(comparison.clock) * 1e3,
                         comparison.rowByRow ? comparison.rowByRow->median(comparison.clock) * 1e3 : 0);
        }
    }
    std::fflush(stdout);
}
