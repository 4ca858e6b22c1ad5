// A clock that stands until it is set forward, for what the store remembers for a while: how long a busy machine takes
// between two calls does not count.
#pragma once

#include <windows.h>

namespace store_test {

inline ULONGLONG addedTime = 0; ///< milliseconds

/// Takes the place of GetTickCount64.
inline ULONGLONG WINAPI laterTime()
{
    static const ULONGLONG start = GetTickCount64();
    return start + addedTime;
}

} // namespace store_test
