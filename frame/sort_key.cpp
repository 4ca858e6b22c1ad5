#include "frame/sort_key.h"

#include "frame/ignore_case.h"
#include "frame/scan_number.h"

SortKey sortKey(const wchar_t* text)
{
    const ScannedNumber scanned = scanNumber(text);
    return {text, scaled(scanned.number, unitShift(scanned.next)), scanned.found};
}

int compareSortKeys(const SortKey& first, const SortKey& second, bool descending)
{
    if (first.isNumber && second.isNumber) {
        const auto a = static_cast<std::uint32_t>(first.number);
        const auto b = static_cast<std::uint32_t>(second.number);
        return static_cast<int>(descending ? b - a : a - b);
    }
    const int order = compareIgnoringCase(second.text, first.text);
    return descending ? -order : order;
}
