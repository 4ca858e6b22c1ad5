// Sizes and percentages as text.
#pragma once

#include <cstdint>

/// Characters of a size text, with the terminator.
inline constexpr int kSizeTextCapacity = 32;
/// Characters of a percent text, with the terminator.
inline constexpr int kPercentTextCapacity = 6;

/// A size as a whole number directly followed by one unit character of " KMGT". A number stays in its unit up
/// to 1048576: 1048576 bytes end in a blank, 1048577 bytes are 1024K. Above 2^60 the text ends after the
/// digits. QUIRK: hosts sort by these texts. FormatSize.FifthDivisionLeavesNoUnitLetter
/// @param value  bytes, also negative.
void formatSize(wchar_t (&buffer)[kSizeTextCapacity], std::int64_t value);

/// A size typed into a dialog field: a number, and directly behind it one of the letters K, M, G, T in either
/// case. Any other character, a blank too, counts as bytes.
/// @return bytes; -1 when the text holds no number.
std::int64_t parseSize(const wchar_t* text);

/// A size typed into a list cell: as parseSize, but in 32 bits that wrap (2G is -2147483648, 4G is 0), and
/// without the letter T. QUIRK: hosts store what comes out. ParseCellSize.CountsIn32Bits ParseCellSize.KnowsNoTerabytes
std::int32_t parseCellSize(const wchar_t* text);

/// inUse * 100 / hardLimit with at least two digits and a percent sign, cut to the buffer.
/// @param hardLimit  not 0: the division is not guarded, and faults.
void formatPercent(wchar_t (&buffer)[kPercentTextCapacity], std::int64_t inUse, std::int64_t hardLimit);
