// Comparing texts without regard to case: as the C runtime does, and as the file system does.
#pragma once

#include <wchar.h>

#ifdef _WIN32
#include "frame/platform.h"
#endif

/// @return less than, equal to or greater than 0, in the runtime's own order: by lower-case characters.
inline int compareIgnoringCase(const wchar_t* a, const wchar_t* b)
{
#ifdef _WIN32
    return _wcsicmp(a, b);
#else
    return wcscasecmp(a, b);
#endif
}

/// Whether two names mean the same file: in all alphabets, where the runtime without a locale knows the letters of
/// English alone.
inline bool sameFileName(const wchar_t* a, const wchar_t* b)
{
#ifdef _WIN32
    return CompareStringOrdinal(a, -1, b, -1, TRUE) == CSTR_EQUAL;
#else
    return wcscasecmp(a, b) == 0;
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
