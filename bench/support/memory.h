// Memory.
#pragma once

#include <cstddef>

/// Memory of the process since a moment, as bytes for each row.
class MemoryInUse {
public:
    /// @param what  whose rows these are,
    /// @param rows  and how many.
    MemoryInUse(const char* what, int rows);

    /// Prints, on the error output, what is in use, and what was at most since the last print; "-" where that was no more than
    /// the process had ever before.
    void print(const char* step);

private:
    const char* m_what;
    int m_rows;
    std::size_t m_before;
    std::size_t m_most;
};
