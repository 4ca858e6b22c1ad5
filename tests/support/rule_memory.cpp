#include "tests/support/rule_memory.h"

#include <windows.h>

#include <new>

namespace {

constexpr size_t kPieceSize = 0x10000;

/// Takes the first free piece of address space in steps from a place on.
unsigned char* reserve(UINT_PTR from, UINT_PTR to)
{
    for (UINT_PTR address = from; address < to; address += kPieceSize) {
        if (void* const block = VirtualAlloc(reinterpret_cast<void*>(address), kPieceSize,
                                             MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE))
        {
            return static_cast<unsigned char*>(block);
        }
    }
    throw std::bad_alloc();
}

/// Hands out records one after the other, from one piece of memory after the other.
class Arena {
public:
    Arena(UINT_PTR from, UINT_PTR to)
        : from_(from)
        , to_(to)
    {
    }
    QuotaRule* take()
    {
        if (next_ == end_) {
            next_ = reserve(from_, to_);
            end_ = next_ + kPieceSize;
        }
        auto* const rule = reinterpret_cast<QuotaRule*>(next_);
        next_ += sizeof(QuotaRule);
        return rule;
    }

private:
    UINT_PTR from_;
    UINT_PTR to_;
    unsigned char* next_ = nullptr;
    unsigned char* end_ = nullptr;
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

QuotaRule* between2And4GiB()
{
    static Arena arena(0x90000000, 0xF0000000);
    return arena.take();
}

bool isAbove4GiB(const void* address)
{
    return reinterpret_cast<UINT_PTR>(address) >= k4GiB;
}

} // namespace rule_memory
