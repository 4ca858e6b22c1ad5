// An attribute of a notification, kept as text, read as a number.
#pragma once

#include <cstdint>

/// Reads a decimal number with an optional unit letter K, M, G or T directly behind it (powers of 1024), cut to
/// 32 bits. Text that holds no number is 0, as is a null.
std::int32_t attributeNumber(const wchar_t* text);
