// What the benches are told.
#pragma once

#include <vector>

struct Options {
    std::vector<int> sizes;
    int rounds = 0; ///< 0: as many as the size deserves
    bool rowByRow = true;
    bool times = false;
    bool memory = false;

    /// How often to measure at a size: small lists more often, as their times are short.
    int roundsOf(int size) const;
};

/// Reads --sizes=1000,10000  --rounds=N  --no-row-by-row  --times  --memory.
/// @param step     sizes are multiples of it,
/// @param largest  and not larger than this.
/// @return false after a message about what is wrong.
bool readOptions(int count, char** arguments, int step, int largest, Options& options);
