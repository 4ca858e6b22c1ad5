// The life of one list, from empty to half empty, with every step timed.
#pragma once

#include "bench/support/time.h"
#include "side.h"

#include <array>
#include <cstdint>
#include <vector>

inline constexpr std::array kMeasures{
    "fill",         "re-fill, all duplicates", "sort by number",          "re-fill of the sorted list",
    "sort by text", "getDataModified2",        "drop of every second row"};

/// The folders of a workload; the list is valid as long as this object.
class Folders {
public:
    explicit Folders(int count);
    int count() const { return static_cast<int>(m_paths.size()); }
    const PathList& list() const { return *reinterpret_cast<const PathList*>(m_list.data()); }

private:
    std::vector<std::array<wchar_t, 32>> m_paths;
    std::vector<std::uintptr_t> m_list;
};

struct Life {
    std::array<Time, kMeasures.size()> times{};
    /// What the list showed after each step: the same on all sides, or they did not do the same.
    std::array<std::uint64_t, kMeasures.size()> shown{};
};

/// The measures of several lives, in the order of kMeasures.
using Tallies = std::array<Tally, kMeasures.size()>;

/// An empty list, prepared for rules. @param window  its visible parent.
HWND createList(HWND window);

/// As before a drop.
void selectEverySecondRow(HWND list);

/// @param window  visible parent of the list.
Life runLife(HWND window, Side& side, const PathList& folders);
