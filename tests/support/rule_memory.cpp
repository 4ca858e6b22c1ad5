#include "tests/support/rule_memory.h"

#include <windows.h>

#include <new>

namespace {

/// Takes the first free piece of address space in steps from a place on.
unsigned char* reserve(UINT_PTR from, UINT_PTR to)
{
    constexpr UINT_PTR kStep = 0x10000;
    constexpr size_t kSize = 0x10000;
    for (UINT_PTR address = from; address < to; address += kStep) {
        if (void* const block = VirtualAlloc(reinterpret_cast<void*>(address), kSize,
                                             MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE))
        {
            return static_cast<unsigned char*>(block);
        }
    }
    throw std::bad_alloc();
}

class Arena {
public:
    Arena(UINT_PTR from, UINT_PTR to)
        : next_(reserve(from, to))
    {
    }
    QuotaRule* take()
    {
        auto* const rule = reinterpret_cast<QuotaRule*>(next_);
        next_ += sizeof(QuotaRule);
        return rule;
    }

private:
    unsigned char* next_; // a thousand records; nobody takes more
};

constexpr UINT_PTR k4GiB = UINT_PTR{1} << 32;

} // namespace

namespace rule_memory {

QuotaRule* above4GiB()
{
    static Arena arena(k4GiB * 0x12, k4GiB * 0x20);
    return arena.take();
}

QuotaRule* below4GiB()
{
    static Arena arena(0x20000000, 0x70000000);
    return arena.take();
}

bool isAbove4GiB(const void* address)
{
    return reinterpret_cast<UINT_PTR>(address) >= k4GiB;
}

} // namespace rule_memory
