#include "tests/processes/enumeration.h"
#include "tests/processes/run_time_functions.h"

#include <gmock/gmock.h>

#include <cwchar>
#include <tlhelp32.h>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Row {
    DWORD id;
    const wchar_t* name;
    DWORD size = sizeof(PROCESSENTRY32W);
};

HANDLE const kSnapshot = reinterpret_cast<HANDLE>(UINT_PTR{0x70000000});

std::vector<Row> rows;
size_t nextRow = 0;
HANDLE created = kSnapshot;
std::vector<DWORD> createdWith;
std::vector<DWORD> sizesAsked;

HANDLE WINAPI create(DWORD flags, DWORD process)
{
    createdWith = {flags, process};
    return created;
}

BOOL WINAPI nextEntry(HANDLE snapshot, PROCESSENTRY32W* entry)
{
    EXPECT_EQ(snapshot, kSnapshot);
    sizesAsked.push_back(entry->dwSize);
    if (nextRow == rows.size()) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    const Row& row = rows[nextRow++];
    entry->dwSize = row.size;
    entry->th32ProcessID = row.id;
    lstrcpynW(entry->szExeFile, row.name, MAX_PATH);
    return TRUE;
}

struct SnapshotTest : testing::Test {
    SnapshotTest()
    {
        nextRow = 0;
        created = kSnapshot;
        sizesAsked.clear();
        functions.put("CreateToolhelp32Snapshot", &create);
        functions.put("Process32FirstW", &nextEntry);
        functions.put("Process32NextW", &nextEntry);
    }
    RunTimeFunctions functions{thisProgram()};
    HeldThings held{thisProgram()};
};

} // namespace

TEST_F(SnapshotTest, TellsEachProcess)
{
    rows = {{0, L"System"}, {8, L"smss.exe"}, {8, L"smss.exe"}};
    const Enumeration seen = Enumeration::of(enumerateProcessSnapshot, 0, L"ignored");
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("0 System", "8 smss.exe", "8 smss.exe"));
    EXPECT_THAT(createdWith, ElementsAre(2u, 0u));
    EXPECT_THAT(sizesAsked, ElementsAre(568u, 568u, 568u, 568u));
    EXPECT_EQ(held.closedHandles, 1);
}

TEST_F(SnapshotTest, KeepsTheBackslashOfAFullPath)
{
    rows = {{1, L"C:\\Windows\\explorer.exe"}, {2, L"\\a.exe"}, {3, L"b\\"}};
    EXPECT_THAT(Enumeration::of(enumerateProcessSnapshot).calls,
                ElementsAre("1 \\explorer.exe", "2 \\a.exe", "3 \\"));
}

TEST_F(SnapshotTest, HasNoNameWhenThePlatformFilledNone)
{
    rows = {{1, L"a.exe", 44}, {2, L"b.exe", 45}, {3, L"c.exe", 0}, {4, L"d.exe"}};
    EXPECT_THAT(Enumeration::of(enumerateProcessSnapshot).calls,
                ElementsAre("1 null", "2 b.exe", "3 null", "4 d.exe"));
    EXPECT_THAT(sizesAsked, testing::Each(568u)); // set again before each
}

TEST_F(SnapshotTest, StopsWhenTheCallbackSaysSo)
{
    rows = {{1, L"a"}, {2, L"b"}, {3, L"c"}};
    const Enumeration seen = Enumeration::of(enumerateProcessSnapshot, 2);
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, ElementsAre("1 a", "2 b"));
    EXPECT_EQ(held.closedHandles, 1);
    EXPECT_EQ(nextRow, 2u);
}

TEST_F(SnapshotTest, FailsWithoutASnapshot)
{
    rows = {{1, L"a"}};
    created = INVALID_HANDLE_VALUE;
    const Enumeration seen = Enumeration::of(enumerateProcessSnapshot);
    EXPECT_EQ(seen.result, 0);
    EXPECT_EQ(seen.error, 4711u); // whatever the platform set
    EXPECT_THAT(seen.calls, IsEmpty());
    EXPECT_EQ(held.closedHandles, 0);
}

TEST_F(SnapshotTest, LeavesTheSnapshotOpenWhenThereIsNoFirstProcess)
{
    rows = {};
    const Enumeration seen = Enumeration::of(enumerateProcessSnapshot);
    EXPECT_EQ(seen.result, 0);
    EXPECT_EQ(seen.error, static_cast<DWORD>(ERROR_NO_MORE_FILES));
    EXPECT_EQ(held.closedHandles, 0);
}

TEST_F(SnapshotTest, NeedsEachFunction)
{
    rows = {{1, L"a"}};
    for (const char* name : {"CreateToolhelp32Snapshot", "Process32FirstW", "Process32NextW"}) {
        RunTimeFunctions without(thisProgram());
        without.remove(name);
        const Enumeration seen = Enumeration::of(enumerateProcessSnapshot);
        EXPECT_EQ(seen.result, 0) << name;
        EXPECT_EQ(seen.error, 127u) << name;
        EXPECT_THAT(seen.calls, IsEmpty()) << name;
    }
    EXPECT_EQ(held.loaded, ""); // kernel32 is there already
}

TEST(SnapshotSystemTest, FindsThisProcess)
{
    const Enumeration seen = Enumeration::of(enumerateProcessSnapshot);
    EXPECT_EQ(seen.result, 1);
    EXPECT_THAT(seen.calls, Contains(std::to_string(GetCurrentProcessId()) + " " + ownImageName()));
}
