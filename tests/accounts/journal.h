// What happened in a test, in order, and the faults it raises.
#pragma once

#include <string>
#include <vector>

/// Everything that the code under test did to the outside.
struct Journal {
    std::vector<std::string> lines;
    bool recording = true;

    // Faults: at the n-th call of one function, or at the n-th call of all.
    std::string faultFunction; ///< empty: any
    int faultAt = 0;           ///< from 1; 0: none
    bool faultThrows = false;  ///< a language exception in place of a processor fault
    std::string faulted;       ///< the function whose call raised it
    int calls = 0;             ///< those of faultFunction so far

    // The list's window goes during the n-th call of all.
    int windowGoesAt = 0; ///< from 1; 0: it stays
    int allCalls = 0;
    bool windowGone = false;
    std::size_t linesBefore = 0; ///< how many there were when it had gone

    void note(const std::string& line);

    /// A call from the code under test: notes it, and raises the fault when it is its turn.
    void call(const std::string& function, const std::string& arguments);

    /// Lines of the debug channel alone.
    std::vector<std::string> debugLines() const;
    int count(const std::string& start) const;
};

extern Journal journal;

/// 8-bit form of a text for the journal; "null" for a null text.
std::string narrow(const wchar_t* text);
