// The lists whose rows carry 32-bit numbers.
#pragma once

#include "frame/platform.h"
#include "frame/stand_ins.h"

#include <vector>

/// Remembers the lists that this library has had to do with, and looks into them.
class CarryingLists {
public:
    /// Notes a list whose rows carry numbers, or will.
    void remember(HWND list);

    /// What the rows of all these lists carry. Sends messages to those of the calling thread; those of other threads
    /// are not waited for.
    StandIns::Carried read() const;

    /// Forgets lists that are gone.
    void tidy();

private:
    struct List {
        HWND window;
        ATOM kind; ///< a window handle may come again, as that of another window
    };
    static bool exists(const List& list);

    std::vector<List> m_lists;
};
