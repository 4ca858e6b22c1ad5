// Reading a number and the character behind it, as the runtime's formatted reading with "%I64d%c" does.
#pragma once

#include <cstdint>

struct ScannedNumber {
    bool found = false;      ///< whether there was a number at all
    std::int64_t number = 0; ///< wraps like the runtime's when the digits do not fit
    bool hasNext = false;    ///< whether a character follows the number
    wchar_t next = L'\0';    ///< that character, whatever it is: a blank is not skipped
};

/// Leading white space is skipped, then an optional sign and decimal digits are read.
/// @param text  not null.
ScannedNumber scanNumber(const wchar_t* text);

/// The unit letters k, m, g, t in either case as a number of bits to shift left; any other character gives 0.
int unitShift(wchar_t unit);

/// value * 2^bits, wrapping.
constexpr std::int64_t scaled(std::int64_t value, int bits)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(value) << bits);
}
