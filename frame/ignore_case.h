// Comparing texts without regard to case, as the C runtime does.
#pragma once

#include <wchar.h>

/// @return less than, equal to or greater than 0, in the runtime's own order: by lower-case characters.
inline int compareIgnoringCase(const wchar_t* a, const wchar_t* b)
{
#ifdef _WIN32
    return _wcsicmp(a, b);
#else
    return wcscasecmp(a, b);
#endif
}

/// Whether a text begins with a start of the given length, in any case.
inline bool startsWithIgnoringCase(const wchar_t* text, const wchar_t* start, size_t length)
{
#ifdef _WIN32
    return _wcsnicmp(text, start, length) == 0;
#else
    return wcsncasecmp(text, start, length) == 0;
#endif
}
