#include "table.h"

#include <cstdio>
#include <string>

namespace {

std::string ratio(double above, double below)
{
    char text[32];
    std::snprintf(text, sizeof text, above / below < 10 ? "%.2f" : "%.0f", above / below);
    return text;
}

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

void printLine(const char* measure, const std::string& rules, const std::string& a, const std::string& b,
               const std::string& c, const std::string& d)
{
    std::printf("| %-24s | %16s | %14s | %20s | %14s | %20s |\n", measure, rules.c_str(), a.c_str(),
                b.c_str(), c.c_str(), d.c_str());
}

void printRule()
{
    std::printf("|%s|%s|%s|%s|%s|%s|\n", std::string(26, '-').c_str(), std::string(18, '-').c_str(),
                std::string(16, '-').c_str(), std::string(22, '-').c_str(), std::string(16, '-').c_str(),
                std::string(22, '-').c_str());
}

} // namespace

void printTable(const std::vector<SizeTimes>& sizes)
{
    std::printf("Rules over many folders (100 in each) and in one folder with one limit.\n"
                "corvane : bare is how many times the bare control's time corvane takes;\n"
                "row by row : corvane is how many times corvane's time the straightforward way takes.\n\n");
    printLine("", "rules", "many folders", "", "one folder", "");
    printLine("measure", "", "corvane : bare", "row by row : corvane", "corvane : bare",
              "row by row : corvane");
    printRule();
    for (std::size_t m = 0; m < kMeasures.size(); ++m) {
        for (const SizeTimes& size : sizes) {
            printLine(kMeasures[m], std::to_string(size.rules),
                      ratio(size.manyFolders.corvane[m], size.manyFolders.bare[m]),
                      rowByRowRatio(size.manyFolders, m),
                      ratio(size.oneFolder.corvane[m], size.oneFolder.bare[m]),
                      rowByRowRatio(size.oneFolder, m));
        }
    }
    if (sizes.size() < 2) {
        return;
    }
    const SizeTimes& from = sizes[sizes.size() - 2];
    const SizeTimes& to = sizes.back();
    printRule();
    printLine("growth", "", "corvane", "bare", "corvane", "bare");
    for (std::size_t m = 0; m < kMeasures.size(); ++m) {
        printLine(kMeasures[m], std::to_string(from.rules) + " > " + std::to_string(to.rules),
                  growth(from.manyFolders.corvane, to.manyFolders.corvane, m),
                  growth(from.manyFolders.bare, to.manyFolders.bare, m),
                  growth(from.oneFolder.corvane, to.oneFolder.corvane, m),
                  growth(from.oneFolder.bare, to.oneFolder.bare, m));
    }
}
