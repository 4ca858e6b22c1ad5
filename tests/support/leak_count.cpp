#include "tests/support/leak_count.h"

#include <windows.h>

#include <malloc.h>

#include <cstdlib>
#include <ostream>
#include <thread>

namespace {

template <class Function>
Function* ntdllFunction(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), name)));
}

long busyHeapBlocks()
{
    const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    long busy = 0;
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        busy += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
    }
    HeapUnlock(heap);
    return busy;
}

// The table that the process shares with the graphics system: the documented count gives 0 on some runtimes.
long gdiObjects()
{
    constexpr size_t kEntries = 0x4000;
    constexpr size_t kEntrySize = 24;
    constexpr size_t kTypeAt = 14;
    constexpr size_t kTableAt = 0xF8;
    static const auto blockOfProcess = ntdllFunction<const unsigned char*()>("RtlGetCurrentPeb");
    const unsigned char* const process = blockOfProcess();
    const auto* const table = *reinterpret_cast<const unsigned char* const*>(process + kTableAt);
    long live = 0;
    for (size_t i = 0; table != nullptr && i < kEntries; ++i) {
        live += table[i * kEntrySize + kTypeAt] != 0 ? 1 : 0;
    }
    return live;
}

BOOL CALLBACK countWindow(HWND window, LPARAM count)
{
    ++*reinterpret_cast<long*>(count);
    EnumChildWindows(
        window,
        [](HWND, LPARAM inner) -> BOOL {
            ++*reinterpret_cast<long*>(inner);
            return TRUE;
        },
        count);
    return TRUE;
}

long threadWindows()
{
    long count = 0;
    EnumThreadWindows(GetCurrentThreadId(), countWindow, reinterpret_cast<LPARAM>(&count));
    return count;
}

// One by one, as the documented count gives 0 on some runtimes, and as the list of all handles of the system, asked
// for while some process has none yet, brings the server of some runtimes down.
long openHandles()
{
    constexpr ULONG_PTR kStep = 4;
    constexpr int kGap =
        2048; // free ones are given out again from the lowest, so there is no gap of this size
    long open = 0;
    int inVain = 0;
    for (ULONG_PTR value = kStep; inVain < kGap; value += kStep) {
        DWORD flags = 0;
        const bool isOpen = GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE;
        open += isOpen ? 1 : 0;
        inVain = isOpen ? 0 : inVain + 1;
    }
    return open;
}

} // namespace

std::bitset<4> LeakCount::above(const LeakCount& other) const
{
    std::bitset<4> higher;
    higher[0] = heapBlocks > other.heapBlocks;
    higher[1] = gdiObjects > other.gdiObjects;
    higher[2] = windows > other.windows;
    higher[3] = handles > other.handles;
    return higher;
}

LeakCount LeakCount::now()
{
    LeakCount count;
    count.handles = openHandles();
    count.gdiObjects = ::gdiObjects();
    count.windows = threadWindows();
    count.heapBlocks = busyHeapBlocks();
    return count;
}

void fillThreadLists()
{
    constexpr int kThreads = 160;
    constexpr size_t kSmall = 2048;
    for (int i = 0; i < kThreads; ++i) {
        std::thread([] {
            for (size_t size = 8; size <= kSmall; size += 8) {
                void* volatile const block = std::malloc(size);
                std::free(block);
            }
        }).join();
    }
}

std::ostream& operator<<(std::ostream& out, const LeakCount& count)
{
    return out << count.heapBlocks << " heap blocks, " << count.gdiObjects << " GDI objects, "
               << count.windows << " windows, " << count.handles << " handles";
}
