// What is printed.
#pragma once

#include "bench/support/time.h"

#include <optional>
#include <string>
#include <vector>

/// Whether the straightforward way is to be measured at a size.
/// @param smaller        what its slowest measure took at the size before; none when it was left out there.
/// @param timesAsMuch    how much longer it is expected to take.
bool endsInTime(std::optional<double> smaller, double timesAsMuch);

/// One measure at one size, on all sides.
struct Comparison {
    std::string measure;
    int size = 0;
    Tally corvane;
    Tally bare;
    std::optional<Tally> rowByRow = std::nullopt; ///< none where it was left out
    Clock clock = Clock::kThread;
};

/// Prints the ratios, those of one measure together: the middle of the rounds, and between which two the middle half of
/// them lies.
/// @param sizes  heading of the sizes.
/// @param times  whether to print the seconds as well, on the error output.
void printComparisons(const char* sizes, std::vector<Comparison> comparisons, bool times);
