// What the process holds.
#pragma once

#include <iosfwd>

struct LeakCount {
    long heapBlocks = 0; ///< of the shared C runtime
    long gdiObjects = 0;
    long windows = 0; ///< of this thread
    long handles = 0;

    static LeakCount now();

    friend bool operator==(const LeakCount&, const LeakCount&) = default;
    friend std::ostream& operator<<(std::ostream& out, const LeakCount& count);
};
