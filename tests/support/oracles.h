// What the functions under test ought to give, found another way than they find it.
#pragma once

#include "frame/scan_number.h"
#include "quota/limits.h"

#include <algorithm>
#include <cstdint>
#include <cwctype>
#include <string>
#include <string_view>

namespace oracles {

/// A number's value modulo 2^64, from its decimal digits: the digits are halved on paper until 64 bits have
/// fallen out at the right.
inline std::uint64_t lowBits(std::wstring digits)
{
    std::uint64_t bits = 0;
    for (int bit = 0; bit < 64; ++bit) {
        int carry = 0;
        for (wchar_t& digit : digits) {
            const int present = carry * 10 + static_cast<int>(digit - L'0');
            digit = static_cast<wchar_t>(L'0' + present / 2);
            carry = present % 2;
        }
        bits |= static_cast<std::uint64_t>(carry) << bit;
    }
    return bits;
}

/// Reading of "%I64d%c" from text taken apart by searching.
inline ScannedNumber scan(const std::wstring& text)
{
    std::size_t start = 0;
    while (start < text.size() && std::iswspace(static_cast<std::wint_t>(text[start])) != 0) {
        ++start;
    }
    const std::wstring_view digitSet = L"0123456789";
    const bool sign = start < text.size() && (text[start] == L'+' || text[start] == L'-');
    const std::size_t first = start + (sign ? 1 : 0);
    const std::size_t last = std::min(text.find_first_not_of(digitSet, first), text.size());
    ScannedNumber result;
    if (last <= first) {
        return result;
    }
    const std::uint64_t magnitude = lowBits(text.substr(first, last - first));
    result.found = true;
    result.number = static_cast<std::int64_t>(sign && text[start] == L'-' ? ~magnitude + 1 : magnitude);
    result.hasNext = last < text.size();
    result.next = result.hasNext ? text[last] : L'\0';
    return result;
}

/// Unit letters in order; the index times ten is what the number is shifted by.
inline int unitIndex(wchar_t unit, std::wstring_view lower, std::wstring_view upper)
{
    const std::size_t low = lower.find(unit);
    const std::size_t index = low != std::wstring_view::npos ? low : upper.find(unit);
    return index == std::wstring_view::npos ? 0 : static_cast<int>(index) + 1;
}

inline std::int64_t parsedSize(const std::wstring& text)
{
    const ScannedNumber scanned = scan(text);
    if (!scanned.found) {
        return -1;
    }
    auto size = static_cast<std::uint64_t>(scanned.number);
    for (int unit = unitIndex(scanned.next, L"kmgt", L"KMGT"); unit > 0; --unit) {
        size *= 1024;
    }
    return static_cast<std::int64_t>(size);
}

inline std::int32_t parsedCellSize(const std::wstring& text)
{
    const ScannedNumber scanned = scan(text);
    if (!scanned.found) {
        return -1;
    }
    auto size = static_cast<std::uint32_t>(static_cast<std::uint64_t>(scanned.number));
    for (int unit = unitIndex(scanned.next, L"kmg", L"KMG"); unit > 0; --unit) {
        size *= 1024;
    }
    return static_cast<std::int32_t>(size);
}

/// The whole number of 1024^unit in a value, towards zero.
inline std::int64_t wholeUnits(std::int64_t value, int unit)
{
    return value / (std::int64_t{1} << (10 * unit));
}

/// Size text: the first unit in which the number is not above 1048576, at most five divisions.
inline std::wstring sizeText(std::int64_t value)
{
    int unit = 0;
    while (unit < 5 && wholeUnits(value, unit) > 1048576) {
        ++unit;
    }
    std::wstring text = std::to_wstring(wholeUnits(value, unit));
    if (unit < 5) {
        text += std::wstring_view(L" KMGT")[static_cast<std::size_t>(unit)];
    }
    return text;
}

/// Whether a percentage can be computed at all.
inline bool divides(std::int64_t inUse, std::int64_t hardLimit)
{
    const std::uint64_t hundredfold = static_cast<std::uint64_t>(inUse) * 100u;
    return hardLimit != 0 && !(hardLimit == -1 && hundredfold == std::uint64_t{1} << 63);
}

/// What is wrong with corrected limits; null when nothing is. Holds for sizes up to 2^62, whose 5 % more still
/// fit.
inline const char* flawOf(const CorrectedLimits& corrected, Limits typed, const LimitRules& rules)
{
    const auto [hard, soft] = corrected.limits;
    if (hard < kSmallestHardLimit) {
        return "the hard limit is below the smallest";
    }
    if (soft < 0 || soft > hard) {
        return "the soft limit is negative or above the hard limit";
    }
    const bool objectCounts = rules.forAnyone || rules.allCounts;
    const bool ownedCounts = !rules.forAnyone && rules.ownedCounts;
    if (!rules.allowBelow &&
        ((objectCounts && hard < rules.objectSize) || (ownedCounts && hard < rules.ownedSize)))
    {
        return "the hard limit is below the size that counts";
    }
    if (typed.hard != -1 && hard < typed.hard) {
        return "a typed hard limit was lowered";
    }
    if (corrected.errors == 0 && typed.hard != -1 && (hard != typed.hard || soft != typed.soft)) {
        return "limits were changed without a word";
    }
    if (corrected.errors > 0 && hard == typed.hard && soft == typed.soft) {
        return "nothing was changed, but an error is counted";
    }
    if (correctLimits(corrected.limits, rules).errors != 0) {
        return "corrected limits are not accepted";
    }
    return nullptr;
}

} // namespace oracles
