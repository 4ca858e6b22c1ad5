#include "rule_table.h"

#include "bench/support/table.h"

#include <cstdio>
#include <string>

namespace {

std::string rowByRowRatio(const Times& times, std::size_t measure)
{
    return times.rowByRow ? ratio((*times.rowByRow)[measure], times.corvane[measure]) : "-";
}

std::string growth(const Seconds& from, const Seconds& to, std::size_t measure)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", to[measure] / from[measure]);
    return text;
}

} // namespace

void printTable(const std::vector<SizeTimes>& sizes)
{
    std::printf("Rules over many folders (100 in each) and in one folder with one limit.\n"
                "corvane : bare is how many times the bare control's time corvane takes;\n"
                "row by row : corvane is how many times corvane's time the straightforward way takes.\n\n");
    const Table table({24, 16, 14, 20, 14, 20});
    table.line({"", "rules", "many folders", "", "one folder", ""});
    table.line(
        {"measure", "", "corvane : bare", "row by row : corvane", "corvane : bare", "row by row : corvane"});
    table.rule();
    for (std::size_t m = 0; m < kMeasures.size(); ++m) {
        for (const SizeTimes& size : sizes) {
            table.line({kMeasures[m], std::to_string(size.rules),
                        ratio(size.manyFolders.corvane[m], size.manyFolders.bare[m]),
                        rowByRowRatio(size.manyFolders, m),
                        ratio(size.oneFolder.corvane[m], size.oneFolder.bare[m]),
                        rowByRowRatio(size.oneFolder, m)});
        }
    }
    if (sizes.size() < 2) {
        return;
    }
    const SizeTimes& from = sizes[sizes.size() - 2];
    const SizeTimes& to = sizes.back();
    table.rule();
    table.line({"growth", "", "corvane", "bare", "corvane", "bare"});
    for (std::size_t m = 0; m < kMeasures.size(); ++m) {
        table.line({kMeasures[m], std::to_string(from.rules) + " > " + std::to_string(to.rules),
                    growth(from.manyFolders.corvane, to.manyFolders.corvane, m),
                    growth(from.manyFolders.bare, to.manyFolders.bare, m),
                    growth(from.oneFolder.corvane, to.oneFolder.corvane, m),
                    growth(from.oneFolder.bare, to.oneFolder.bare, m)});
    }
}
