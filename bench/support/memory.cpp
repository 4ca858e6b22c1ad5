#include "bench/support/memory.h"

#include <windows.h>

#include <psapi.h>

#include <cstdio>

namespace {

PROCESS_MEMORY_COUNTERS counters()
{
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

} // namespace

MemoryInUse::MemoryInUse(const char* what, int rows)
    : m_what(what)
    , m_rows(rows)
    , m_before(counters().WorkingSetSize)
    , m_most(counters().PeakWorkingSetSize)
{
}

void MemoryInUse::print(const char* step)
{
    const PROCESS_MEMORY_COUNTERS now = counters();
    const auto perRow = [&](std::size_t bytes) {
        return (static_cast<double>(bytes) - static_cast<double>(m_before)) / m_rows;
    };
    char most[32] = "-";
    if (now.PeakWorkingSetSize > m_most) {
        std::snprintf(most, sizeof most, "%.0f", perRow(now.PeakWorkingSetSize));
    }
    m_most = now.PeakWorkingSetSize;
    std::fprintf(stderr, "%9d %s, after %-42s %6.0f bytes a row, at most %6s\n", m_rows, m_what, step,
                 perRow(now.WorkingSetSize), most);
}
