#include "tests/processes/enumeration.h"
#include "tests/processes/run_time_functions.h"

#include <gmock/gmock.h>

#include <cstring>

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace {

/// What the walk may read of a record of the kernel.
struct Record {
    DWORD next = 0;
    char unread1[60] = {};
    const wchar_t* name = nullptr; ///< at 64
    DWORD unread2 = 0xAAAAAAAA;
    DWORD id = 0; ///< at 76
    UINT_PTR realId = 0xBBBBBBBB;
};
static_assert(offsetof(Record, name) == 64 && offsetof(Record, id) == 76);

std::vector<Record> records;
std::vector<ULONG> recordSizesAsked;
ULONG sizeNeeded = 0;
LONG recordStatus = 0;

LONG WINAPI query(ULONG what, void* buffer, ULONG size, ULONG* /*needed*/)
{
    EXPECT_EQ(what, 5u);
    recordSizesAsked.push_back(size);
    if (size < sizeNeeded) {
        return static_cast<LONG>(0xC0000004);
    }
    if (recordStatus < 0) {
        return recordStatus;
    }
    std::memcpy(buffer, records.data(), records.size() * sizeof(Record));
    return recordStatus;
}

struct RecordsTest : testing::Test {
    RecordsTest()
    {
        recordSizesAsked.clear();
        sizeNeeded = 0;
        recordStatus = 0;
        functions.put("ZwQuerySystemInformation", &query);
    }
    RunTimeFunctions functions{thisProgram()};
    HeldThings held{thisProgram()};

    static void put(const std::vector<std::pair<DWORD, const wchar_t*>>& processes)
    {
        records.clear();
        for (const auto& [id, name] : processes) {
            Record record;
            record.next = sizeof(Record);
            record.id = id;
            record.name = name;
            records.push_back(record);
        }
        records.back().next = 0;
    }
};

} // namespace

TEST_F(RecordsTest, TellsEachProcess)
{
    put({{0, nullptr}, {77, L"smss.exe"}, {78, L"last.exe"}});
    const Enumeration seen = Enumeration::of(enumerateProcessRecords, 0, L"ignored");
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("0 Idle", "77 smss.exe", "78 last.exe"));
    EXPECT_THAT(recordSizesAsked, ElementsAre(32768u));
    EXPECT_EQ(held.heapBlocks, 0);
    EXPECT_EQ(held.loaded, "");
}

TEST_F(RecordsTest, StopsWhenTheCallbackSaysSo)
{
    put({{1, L"a"}, {2, L"b"}, {3, L"c"}});
    const Enumeration seen = Enumeration::of(enumerateProcessRecords, 2);
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("1 a", "2 b"));
    EXPECT_EQ(held.heapBlocks, 0);
}

TEST_F(RecordsTest, AsksAgainWithTwiceTheRoom)
{
    put({{1, L"a"}});
    sizeNeeded = 100000;
    EXPECT_THAT(Enumeration::of(enumerateProcessRecords).calls, ElementsAre("1 a"));
    EXPECT_THAT(recordSizesAsked, ElementsAre(32768u, 65536u, 131072u));
    EXPECT_EQ(held.heapBlocks, 0);
}

TEST_F(RecordsTest, FailsWithTheRawStatus)
{
    put({{1, L"a"}});
    for (const DWORD failing : {0xC0000022u, 0x80000005u}) {
        recordStatus = static_cast<LONG>(failing);
        const Enumeration seen = Enumeration::of(enumerateProcessRecords);
        EXPECT_EQ(seen.result, 0);
        EXPECT_EQ(seen.error, failing);
        EXPECT_THAT(seen.calls, IsEmpty());
        EXPECT_EQ(held.heapBlocks, 0);
    }
    recordStatus = 0x40000000; // no failure: its top bit is clear
    EXPECT_EQ(Enumeration::of(enumerateProcessRecords).result, 1);
}

TEST_F(RecordsTest, FailsWithoutMemory)
{
    put({{1, L"a"}});
    sizeNeeded = 100000;
    for (const int after : {0, 1}) {
        held.failHeapAfter = after;
        const Enumeration seen = Enumeration::of(enumerateProcessRecords);
        EXPECT_EQ(seen.result, 0);
        EXPECT_EQ(seen.error, 8u);
        EXPECT_EQ(held.heapBlocks, 0);
    }
    held.failHeapAfter = -1;
}

TEST_F(RecordsTest, ComesToAnEndWhenNoRoomIsEverEnough)
{
    // Allocations of this size are not to be made for a test.
    const ImportPatch noMemory(
        thisProgram(), "HeapAlloc", +[](HANDLE, DWORD, SIZE_T) -> void* { return &records; });
    const ImportPatch noFree(thisProgram(), "HeapFree", +[](HANDLE, DWORD, void*) -> BOOL { return TRUE; });
    sizeNeeded = 0xFFFFFFFF;
    const Enumeration seen = Enumeration::of(enumerateProcessRecords);
    EXPECT_EQ(seen.result, 0);
    EXPECT_EQ(seen.error, 8u);
    EXPECT_EQ(recordSizesAsked.back(), 0x80000000u);
}

TEST_F(RecordsTest, NeedsTheFunction)
{
    functions.remove("ZwQuerySystemInformation");
    const Enumeration seen = Enumeration::of(enumerateProcessRecords);
    EXPECT_EQ(seen.result, 0);
    EXPECT_EQ(seen.error, 127u);
}

TEST(RecordsSystemTest, FindsThisProcess)
{
    const Enumeration seen = Enumeration::of(enumerateProcessRecords);
    EXPECT_EQ(seen.result, 1);
    // By its name alone: the place that the id is read from is not where this system keeps it.
    EXPECT_THAT(seen.calls, Contains(EndsWith(" " + ownImageName())));
}
