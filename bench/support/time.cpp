#include "bench/support/time.h"

#include <windows.h>

#include <algorithm>

namespace {

constexpr double kShort = 0.02;

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

void Tally::add(Time time)
{
    m_shortest = any() ? std::min(m_shortest, time.wall) : time.wall;
    m_processor += time.processor;
    ++m_rounds;
}

double Tally::seconds() const
{
    return m_shortest < kShort ? m_shortest : m_processor / m_rounds;
}
