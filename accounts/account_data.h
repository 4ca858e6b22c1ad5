// What stands for an account: in a row's item data, in the chooser's result.
#pragma once

#include "store/owned.h"

#include <cstdint>

/// Whether a value is the address of a SID. Smaller ones are numbers: 0 for nothing, 1 for anyone.
inline bool isSid(const void* value)
{
    return reinterpret_cast<std::uintptr_t>(value) >= 3;
}

inline void freeAccount(void* value)
{
    if (isSid(value)) {
        freeBlock(value);
    }
}

/// Owns a SID copy from the store, or holds a number.
using AccountData = Owned<void*, freeAccount>;
