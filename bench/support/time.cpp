#include "bench/support/time.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

double wallClock()
{
    LARGE_INTEGER ticks;
    LARGE_INTEGER perSecond;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&perSecond);
    return static_cast<double>(ticks.QuadPart) / static_cast<double>(perSecond.QuadPart);
}

double processorTime()
{
    FILETIME created;
    FILETIME ended;
    FILETIME kernel;
    FILETIME user;
    GetThreadTimes(GetCurrentThread(), &created, &ended, &kernel, &user);
    const auto seconds = [](const FILETIME& time) {
        return (static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime) * 1e-7;
    };
    return seconds(kernel) + seconds(user);
}

/// Between two neighbours, their mean by distance.
double quantile(const std::vector<double>& sorted, double part)
{
    const double place = part * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return std::lerp(sorted[below], sorted[above], place - static_cast<double>(below));
}

/// @param values  one at least.
Spread spreadOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return {quantile(values, 0.25), quantile(values, 0.5), quantile(values, 0.75)};
}

} // namespace

Time now()
{
    return {wallClock(), processorTime()};
}

Time timed(const std::function<void()>& work)
{
    const Time start = now();
    work();
    return now() - start;
}

std::vector<double> Tally::seconds(Clock clock) const
{
    const auto second = [clock](const Time& time) {
        return clock == Clock::kWall ? time.wall : time.processor;
    };
    std::vector<double> seconds(m_rounds.size());
    std::transform(m_rounds.begin(), m_rounds.end(), seconds.begin(), second);
    return seconds;
}

bool Tally::isLong() const
{
    constexpr double kManyTicks = 0.5;
    return std::all_of(m_rounds.begin(), m_rounds.end(),
                       [](const Time& time) { return time.processor >= kManyTicks; });
}

double Tally::median(Clock clock) const
{
    return spreadOf(seconds(isLong() ? clock : Clock::kWall)).median;
}

Spread ratioOf(const Tally& above, const Tally& below, Clock clock)
{
    const Clock one = above.isLong() && below.isLong() ? clock : Clock::kWall;
    std::vector<double> ratios = above.seconds(one);
    std::vector<double> others = below.seconds(one);
    if (ratios.size() != others.size()) {
        others.assign(ratios.size(), spreadOf(others).median);
    }
    std::transform(ratios.begin(), ratios.end(), others.begin(), ratios.begin(), std::divides<>{});
    return spreadOf(ratios);
}
