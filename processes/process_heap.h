// Buffers of the process heap, for answers whose size is not known beforehand.
#pragma once

#include "frame/platform.h"
#include "store/owned.h"

#include <cstddef>

/// The last error stays: it tells what the enumeration came to.
inline void freeToProcessHeap(void* block)
{
    const DWORD error = GetLastError();
    HeapFree(GetProcessHeap(), 0, block);
    SetLastError(error);
}
using ProcessHeapBlock = Owned<void*, freeToProcessHeap>;

/// @return null when memory is short; the last error is then ERROR_NOT_ENOUGH_MEMORY.
inline ProcessHeapBlock allocateFromProcessHeap(std::size_t bytes)
{
    ProcessHeapBlock block(HeapAlloc(GetProcessHeap(), 0, bytes));
    if (!block) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return block;
}
