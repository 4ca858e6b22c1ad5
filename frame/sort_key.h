// What sorting needs to know of a cell's text.
#pragma once

#include <cstdint>

/// A cell's text, and the number at its start with the unit letter behind it worked in.
struct SortKey {
    const wchar_t* text = L""; ///< not owned
    std::int64_t number = 0;   ///< 0 when the text holds no number
    bool isNumber = false;
};

/// @param text  not null; must outlive the key.
SortKey sortKey(const wchar_t* text);

/// The comparison result that a list control gets for two cells. Two numbers are compared by the low 32 bits of
/// their difference, so that sizes 2 GiB or more apart may come out wrong; anything else as text without regard
/// to case. Ascending, numbers run upwards but texts from Z to A.
/// QUIRK: it is the order that hosts show. SortKey.DifferencesAreCutTo32Bits SortKey.TextsRunFromZToAFirst
int compareSortKeys(const SortKey& first, const SortKey& second, bool descending);
