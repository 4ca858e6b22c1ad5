// Sort keys as numbers, for comparing them often.
#pragma once

#include "frame/sort_key.h"

#include <cstdint>
#include <span>

/// Finds numbers that compare as the keys do, see compareRanks.
///
/// A column of numbers is compared by 32 bits of their differences: these bits of the numbers themselves do. A column
/// of texts is put in order once. Where both are mixed no such numbers need exist, as a number comes before another by
/// its value and before a text by its letters.
/// @param ranks  as many as keys; receives the numbers.
/// @return false when the keys are mixed.
bool rankKeys(std::span<const SortKey> keys, std::span<std::uint32_t> ranks);

/// As compareSortKeys of the two keys: the same sign.
inline int compareRanks(std::uint32_t first, std::uint32_t second, bool descending)
{
    return static_cast<int>(descending ? second - first : first - second);
}
