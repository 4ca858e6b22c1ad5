// Memory and address space below 4 GiB, for what is carried in 32 bits.
#pragma once

#include "frame/platform.h"
#include "store/owned.h"

#include <cstddef>

inline void releaseAddressSpace(void* block)
{
    VirtualFree(block, 0, MEM_RELEASE);
}
/// Owns a region that VirtualAlloc reserved.
using LowBlock = Owned<void*, releaseAddressSpace>;

bool isBelowFourGiB(const void* address);

/// Reserves address space as high below 4 GiB as possible: low addresses are scarce for those who need them.
/// @return null when there is none left.
LowBlock reserveBelowFourGiB(std::size_t size);

/// The same, as memory to read and write. A region of its own for each call: meant for rare, small blocks.
LowBlock allocateBelowFourGiB(std::size_t size);
