// The rate limit of a notification as text.
#pragma once

#include <cstdint>

/// Characters of a rate text's buffer, with the terminator.
inline constexpr int kRateTextCapacity = 128;

/// Seconds of the rate that a 0 stands for.
inline constexpr std::int32_t kDefaultRate = 86400;

/// Writes a rate in the largest unit that it reaches: "5min", "1day(s)"; what is left over is dropped.
/// @param seconds  seconds between two notifications; 0 stands for a day, negative is "no limit".
void formatRate(wchar_t (&buffer)[kRateTextCapacity], std::int32_t seconds);
