#include "tests/support/rule_memory.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
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
        : m_from(from)
        , m_to(to)
    {
    }
    QuotaRule* take()
    {
        if (m_next == m_end) {
            m_next = reserve(m_from, m_to);
            m_end = m_next + kPieceSize;
        }
        auto* const rule = reinterpret_cast<QuotaRule*>(m_next);
        m_next += sizeof(QuotaRule);
        return rule;
    }

private:
    UINT_PTR m_from;
    UINT_PTR m_to;
    unsigned char* m_next = nullptr;
    unsigned char* m_end = nullptr;
};

constexpr UINT_PTR k4GiB = UINT_PTR{1} << 32;

struct Range {
    UINT_PTR from;
    UINT_PTR to;
};
constexpr Range kAbove{k4GiB * 0x12, k4GiB * 0x20};
constexpr Range kBelow2{0x20000000, 0x70000000};
constexpr Range kBelow4{0x90000000, 0xF0000000};

QuotaRule* (*makeRecord)() = nullptr;

void* take(size_t size)
{
    return size == sizeof(QuotaRule) ? makeRecord() : std::malloc(size);
}

// Blocks of the records' ranges stay: they are not the heap's, or not for sure.
void give(void* block)
{
    const auto address = reinterpret_cast<UINT_PTR>(block);
    for (const Range& range : {kAbove, kBelow2, kBelow4}) {
        if (range.from <= address && address < range.to) {
            return;
        }
    }
    std::free(block);
}

} // namespace

namespace rule_memory {

QuotaRule* above4GiB()
{
    static Arena arena(kAbove.from, kAbove.to);
    return arena.take();
}

QuotaRule* below4GiB()
{
    static Arena arena(kBelow2.from, kBelow2.to);
    return arena.take();
}

QuotaRule* between2And4GiB()
{
    static Arena arena(kBelow4.from, kBelow4.to);
    return arena.take();
}

bool isAbove4GiB(const void* address)
{
    return reinterpret_cast<UINT_PTR>(address) >= k4GiB;
}

LibraryRecords::LibraryRecords(QuotaRule* (*make)())
    : m_take(ImportPatch::corvane(), "malloc", take)
    , m_give(ImportPatch::corvane(), "free", give)
{
    EXPECT_EQ(m_take.count(), 1);
    EXPECT_EQ(m_give.count(), 1);
    makeRecord = make;
}

LibraryRecords::~LibraryRecords()
{
    makeRecord = nullptr;
}

} // namespace rule_memory
