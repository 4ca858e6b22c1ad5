// What the process holds.
#pragma once

#include <bitset>
#include <iosfwd>

struct LeakCount {
    long heapBlocks = 0; ///< of the shared C runtime
    long gdiObjects = 0;
    long windows = 0; ///< of this thread
    long handles = 0;

    static LeakCount now();

    /// Which of the numbers, in their order, are higher than others.
    std::bitset<4> above(const LeakCount& other) const;

    friend bool operator==(const LeakCount&, const LeakCount&) = default;
    friend std::ostream& operator<<(std::ostream& out, const LeakCount& count);
};

/// Has the heap make what it keeps for threads: some runtimes have lists of small blocks for each of so many threads and
/// count a list as one block. To be called before a count, where threads come and go before the next one.
void fillThreadLists();
