// A clock that is set forward, for what the store remembers for a while.
#pragma once

#include <windows.h>

namespace store_test {

inline ULONGLONG addedTime = 0; ///< milliseconds

/// Takes the place of GetTickCount64.
inline ULONGLONG WINAPI laterTime()
{
    return GetTickCount64() + addedTime;
}

} // namespace store_test
