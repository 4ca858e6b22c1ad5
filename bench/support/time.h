// Time.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

/// Seconds of a piece of work.
struct Time {
    double wall = 0;
    double processor = 0; ///< of the calling thread; ticks in hundredths of a second
    friend Time operator-(Time a, Time b) { return {a.wall - b.wall, a.processor - b.processor}; }
};

/// Since some moment of the past.
Time now();

Time timed(const std::function<void()>& work);

/// Which time of a measure counts.
enum class Clock : std::uint8_t {
    kThread, ///< the thread's processor time where it is long enough to be told, else the wall's
    kWall    ///< for work that more threads than one do, or that waits for a disk
};

/// One number out of several rounds.
struct Spread {
    double low = 0; ///< a quarter of the rounds is below
    double median = 0;
    double high = 0; ///< a quarter of the rounds is above
};

/// The rounds of one measure.
class Tally {
public:
    void add(Time time) { m_rounds.push_back(time); }
    std::size_t rounds() const { return m_rounds.size(); }
    /// Seconds of each round.
    std::vector<double> seconds(Clock clock) const;
    /// The middle one.
    double median(Clock clock = Clock::kThread) const;
    /// Whether the thread's own time is to be trusted: a tick more or less must not show.
    bool isLong() const;

private:
    std::vector<Time> m_rounds;
};

/// How many times one takes as long as the other. Rounds that followed each other at once are compared with each other, so
/// that what disturbs the machine for longer than a round disturbs both; where one side has more rounds than the other, with
/// the middle of the other.
Spread ratioOf(const Tally& above, const Tally& below, Clock clock);
