// Time.
#pragma once

#include <functional>

/// Seconds of a piece of work.
struct Time {
    double wall = 0;
    double processor = 0; ///< of the calling thread; ticks in hundredths of a second
    friend Time operator-(Time a, Time b) { return {a.wall - b.wall, a.processor - b.processor}; }
};

/// Since some moment of the past.
Time now();

Time timed(const std::function<void()>& work);

/// Several rounds of one measure taken together, fit for a machine that others use too: a short measure has the
/// machine for itself in one round or another, and its shortest wall time counts. A long one never has, and its
/// processor time counts, the mean of all rounds.
class Tally {
public:
    void add(Time time);
    bool any() const { return m_rounds != 0; }
    double seconds() const;

    /// By the wall alone: for work that more threads than one do.
    double shortest() const { return m_shortest; }

private:
    double m_shortest = 0;
    double m_processor = 0;
    int m_rounds = 0;
};
