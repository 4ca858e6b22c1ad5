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
