// Texts put together in a buffer of fixed size.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cwchar>

/// Formats with the platform's own formatter, cut to the buffer and always terminated.
/// @param format  wide printf format. A null wide string given for %ls shows as the formatter writes it.
template <std::size_t N>
void formatText(wchar_t (&buffer)[N], const wchar_t* format, ...)
{
    va_list arguments{};
    va_start(arguments, format);
    _vsnwprintf(buffer, N - 1, format, arguments); // leaves a text that it cuts without terminator
    va_end(arguments);
    buffer[N - 1] = L'\0';
}
