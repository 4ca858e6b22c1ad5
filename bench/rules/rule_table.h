// What is printed.
#pragma once

#include "measure.h"

#include <optional>

/// The times of one workload; none where a side was left out.
struct Times {
    Seconds corvane{};
    Seconds bare{};
    std::optional<Seconds> rowByRow;
};

/// All times of one number of rules.
struct SizeTimes {
    int rules = 0;
    Times manyFolders;
    Times oneFolder;
};

/// Prints the ratios, and the growth between the two largest sizes.
void printTable(const std::vector<SizeTimes>& sizes);
