// Fuzzer input as text and as numbers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <string>

using FuzzInput = std::span<const std::uint8_t>;

/// Text of the input's bytes: plain characters, and in the upper half those that parsers stumble over. It ends at
/// the first zero, as the parsers see it.
inline std::wstring textOf(FuzzInput input)
{
    static constexpr wchar_t kOdd[] = L"0123456789+- kKmMgGtT\x00A0\x2003\x3000\x0661\xFF11\xD800\xFFFF";
    std::wstring text;
    for (const std::uint8_t byte : input) {
        text += byte < 0x80 ? static_cast<wchar_t>(byte) : kOdd[(byte - 0x80u) % (std::size(kOdd) - 1)];
    }
    return text.c_str();
}

/// Takes a number from the input's start; bytes that are missing are 0.
inline std::int64_t takeNumber(FuzzInput& input)
{
    std::int64_t number = 0;
    const std::size_t size = std::min(input.size(), sizeof number);
    std::memcpy(&number, input.data(), size);
    input = input.subspan(size);
    return number;
}

/// Ends the run as a finding.
inline void require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "Wrong: %s\n", what);
        std::abort();
    }
}
