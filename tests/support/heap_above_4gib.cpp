// Linked into a test program, this has its heap lie above 4 GiB, as it does on today's Windows, whatever the runtime would
// do by itself: what is free below is taken before anything else happens.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

constexpr UINT_PTR kFourGiB = UINT_PTR{1} << 32;
constexpr UINT_PTR kGranularity = 0x10000;

/// Address space that stays free below: for the library's stand-ins, for tests that want an address there, and for the
/// runtime's threads.
struct Gap {
    UINT_PTR start;
    UINT_PTR end;
};
constexpr Gap kGaps[] = {{0x40000000, 0x44000000}, {0xC0000000, 0xC4000000}};

bool isLow(const void* address)
{
    return reinterpret_cast<UINT_PTR>(address) < kFourGiB;
}

void* reserve(UINT_PTR start, UINT_PTR end)
{
    return start < end ? VirtualAlloc(reinterpret_cast<void*>(start), end - start, MEM_RESERVE, PAGE_NOACCESS)
                       : nullptr;
}

// Reserves all free address space below 4 GiB. @return what of it is to be given back.
std::vector<void*> reserveEverythingLow()
{
    std::vector<void*> gaps;
    MEMORY_BASIC_INFORMATION region{};
    for (UINT_PTR address = kGranularity; address < kFourGiB;) {
        if (VirtualQuery(reinterpret_cast<const void*>(address), &region, sizeof region) == 0) {
            break;
        }
        const UINT_PTR end =
            std::min(reinterpret_cast<UINT_PTR>(region.BaseAddress) + region.RegionSize, kFourGiB);
        if (region.State == MEM_FREE) {
            UINT_PTR start = (address + kGranularity - 1) & ~(kGranularity - 1);
            const UINT_PTR last = end & ~(kGranularity - 1);
            for (const Gap& gap : kGaps) {
                const UINT_PTR from = std::clamp(gap.start, start, std::max(start, last));
                const UINT_PTR to = std::clamp(gap.end, start, std::max(start, last));
                reserve(start, from);
                if (void* const kept = reserve(from, to)) {
                    gaps.push_back(kept);
                }
                start = std::max(start, to);
            }
            reserve(start, last);
        }
        address = end;
    }
    return gaps;
}

// Takes what the heap still has below, block by block and for good: large blocks first, then each size by itself, for
// small ones have lists of their own.
void exhaustLowHeap()
{
    constexpr int kEnough = 8; // in a row above: that size comes from above from now on
    const auto exhaust = [](std::size_t size) {
        for (int above = 0, all = 0; above < kEnough && all < 1'000'000; ++all) {
            above = isLow(std::malloc(size)) ? 0 : above + 1;
        }
    };
    for (const std::size_t size : {0x80000u, 0x40000u, 0x10000u, 0x8000u, 0x4000u, 0x2000u, 0x1000u}) {
        exhaust(size);
    }
    for (std::size_t size = 0x800; size >= 8; size -= 8) {
        exhaust(size);
    }
}

struct Regime {
    Regime()
    {
        const std::vector<void*> gaps = reserveEverythingLow();
        exhaustLowHeap();
        for (void* const gap : gaps) {
            VirtualFree(gap, 0, MEM_RELEASE);
        }
    }
};

// Before main, and before most of what other static objects allocate.
const Regime kRegime;

// What was allocated before may have been given back since, while the tests were registered.
struct RestOfLowHeap : testing::Environment {
    void SetUp() override { exhaustLowHeap(); }
};
testing::Environment* const kRest =
    testing::AddGlobalTestEnvironment(std::make_unique<RestOfLowHeap>().release());

} // namespace

// Blocks of the sizes that records, texts and rows have.
TEST(HeapRegimeTest, BlocksLieAbove4GiB)
{
    for (const std::size_t size : {16u, 24u, 64u, 100u, 520u, 4096u}) {
        void* const block = std::malloc(size);
        EXPECT_FALSE(isLow(block)) << size << " bytes";
        std::free(block);
    }
}
