// Text put together where there is room for it, a hundred thousand lines in a row.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

namespace lornix {

/// @param to  has room for the text.
/// @return its end there.
inline char* putText(char* to, std::string_view text)
{
    // Parts of a line are a few dozen bytes, which takes less than a call of the platform's function for any number.
    constexpr std::size_t kStep = 16;
    const char* from = text.data();
    const std::size_t size = text.size();
    if (size < kStep) {
        return std::copy(from, from + size, to);
    }
    for (std::size_t done = 0; done < size - kStep; done += kStep) {
        std::memcpy(to + done, from + done, kStep);
    }
    std::memcpy(to + size - kStep, from + size - kStep, kStep); // some of it once more
    return to + size;
}

/// Puts a number of 64 bits or less there.
template <class Number>
char* putNumber(char* to, Number number, int base = 10)
{
    constexpr std::size_t kLongest = 20;
    return std::to_chars(to, to + kLongest, number, base).ptr;
}

} // namespace lornix
