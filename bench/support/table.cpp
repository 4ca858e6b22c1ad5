#include "bench/support/table.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

namespace {

/// No measure that is known to take longer is begun.
constexpr double kPatience = 60;

} // namespace

void Table::line(const std::vector<std::string>& cells) const
{
    for (std::size_t i = 0; i < m_widths.size(); ++i) {
        std::printf("| %*s ", i == 0 ? -m_widths[i] : m_widths[i], cells[i].c_str());
    }
    std::printf("|\n");
}

void Table::rule() const
{
    for (const int width : m_widths) {
        std::printf("|%s", std::string(static_cast<std::size_t>(width) + 2, '-').c_str());
    }
    std::printf("|\n");
}

std::string ratio(double above, double below)
{
    char text[32];
    std::snprintf(text, sizeof text, above / below < 10 ? "%.2f" : "%.0f", above / below);
    return text;
}

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
    std::vector<int> widths{38, 9, 14};
    std::vector<std::string> headings{"measure", sizes, "corvane : bare"};
    if (rowByRow) {
        widths.push_back(20);
        headings.emplace_back("row by row : corvane");
    }
    const Table table(widths);
    table.line(headings);
    table.rule();
    for (const Comparison& comparison : comparisons) {
        table.line({comparison.measure, std::to_string(comparison.size),
                    ratio(comparison.corvane, comparison.bare),
                    comparison.rowByRow ? ratio(*comparison.rowByRow, comparison.corvane) : "-"});
        if (times) {
            std::fprintf(stderr, "%-38s %9d  %12.3f %12.3f %12.3f ms\n", comparison.measure.c_str(),
                         comparison.size, comparison.corvane * 1e3, comparison.bare * 1e3,
                         comparison.rowByRow.value_or(0) * 1e3);
        }
    }
    std::fflush(stdout);
}
