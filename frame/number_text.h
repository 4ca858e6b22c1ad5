// Whole numbers as text.
#pragma once

#include <cstdint>

/// Most characters that a number takes.
inline constexpr int kNumberTextLength = 20;

/// Writes a number's decimal digits, without a terminator.
/// @param to  room for kNumberTextLength characters.
/// @return one past the last.
wchar_t* writeNumber(wchar_t* to, std::int64_t value);
