#include "frame/low_memory.h"

namespace {

constexpr UINT_PTR kFourGiB = UINT_PTR{1} << 32;
constexpr UINT_PTR kGranularity = 0x10000;

// The highest address below 4 GiB at which a region of this size is free now, 0 when there is none. A free region
// is only told from its queried address upwards, so the walk goes up.
UINT_PTR highestFree(std::size_t size)
{
    UINT_PTR found = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (UINT_PTR address = kGranularity; address < kFourGiB;) {
        if (VirtualQuery(reinterpret_cast<const void*>(address), &region, sizeof region) == 0) {
            break;
        }
        const UINT_PTR end = reinterpret_cast<UINT_PTR>(region.BaseAddress) + region.RegionSize;
        const UINT_PTR usable = end < kFourGiB ? end : kFourGiB;
        if (region.State == MEM_FREE && usable - address >= size) {
            const UINT_PTR wanted = (usable - size) & ~(kGranularity - 1);
            found = wanted >= address ? wanted : found;
        }
        address = end;
    }
    return found;
}

LowBlock allocate(std::size_t size, DWORD type, DWORD protection)
{
    // Another thread may take the place found; there are others.
    for (int attempt = 0; attempt < 16; ++attempt) {
        const UINT_PTR place = highestFree(size);
        if (place == 0) {
            break;
        }
        if (void* block = VirtualAlloc(reinterpret_cast<void*>(place), size, type, protection)) {
            return LowBlock(block);
        }
    }
    return nullptr;
}

} // namespace

bool isBelowFourGiB(const void* address)
{
    return reinterpret_cast<UINT_PTR>(address) < kFourGiB;
}

LowBlock reserveBelowFourGiB(std::size_t size)
{
    return allocate(size, MEM_RESERVE, PAGE_NOACCESS);
}

LowBlock allocateBelowFourGiB(std::size_t size)
{
    return allocate(size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}
