// Disks that are full, read-only, locked: nothing that was stored is lost, and the report says why.
#include "store_test.h"

#include "tests/support/import_patch.h"

#include <atomic>

namespace {

using namespace store_test;

std::atomic<LONGLONG> room{0}; // bytes that the disk still takes

BOOL WINAPI fullDisk(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped)
{
    const LONGLONG fits = std::max<LONGLONG>(0, std::min<LONGLONG>(size, room));
    room -= fits;
    WriteFile(file, bytes, static_cast<DWORD>(fits), written, overlapped);
    if (fits == size) {
        return TRUE;
    }
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

BOOL WINAPI failingFlush(HANDLE)
{
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

HANDLE WINAPI readOnlyDisk(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                           DWORD disposition, DWORD flags, HANDLE pattern)
{
    if ((access & GENERIC_WRITE) != 0 || disposition != OPEN_EXISTING) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return CreateFileW(name, access, share, security, disposition, flags, pattern);
}

std::wstring refusedTarget;

BOOL WINAPI refusingMove(const wchar_t* from, const wchar_t* to, DWORD flags)
{
    if (std::wstring_view(to).ends_with(refusedTarget)) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return FALSE;
    }
    return MoveFileExW(from, to, flags);
}

std::atomic<int> sleeps{0};

void WINAPI noSleep(DWORD)
{
    ++sleeps;
}

class RefusingDiskTest : public StoreTest {
protected:
    const std::vector<std::wstring> folders_{L"D:\\A", L"D:\\B", L"D:\\C"};
    const std::vector<Rule> before_{{L"D:\\A", 5}, {L"D:\\B", 6}};

    void SetUp() override
    {
        StoreTest::SetUp();
        store(folders_, before_);
    }

    static int attempt(const std::vector<std::wstring>& folders, const std::vector<Rule>& rules)
    {
        return lornixStoreRules(foldersOf(folders).get(), chainOf(rules).get());
    }

    void expectBefore()
    {
        EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 5}}));
        EXPECT_EQ(stored(L"D:\\B"), (std::vector<Rule>{{L"D:\\B", 6}}));
        EXPECT_TRUE(stored(L"D:\\C").empty());
        EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()),
                  (std::vector<std::wstring>{L"D:\\A", L"D:\\B"}));
        EXPECT_EQ(namesIn(rulesFolder()).size(), 2u) << "nothing half written stays";
        EXPECT_EQ(namesIn(data()),
                  (std::vector<std::wstring>{L"known-folders.txt", L"lornix.lock", L"rules"}));
    }
};

TEST_F(RefusingDiskTest, FullDiskAtEveryByteChangesNothing)
{
    const std::vector<Rule> after{{L"D:\\A", 50}, {L"D:\\B", 60}, {L"D:\\C", 70}};
    const ImportPatch full(storeModule(), "WriteFile", &fullDisk);
    ASSERT_EQ(full.count(), 1);
    LONGLONG size = 0;
    for (;; size += 17) {
        room = size;
        if (attempt(folders_, after) != 0) {
            break;
        }
        EXPECT_TRUE(reported(L"(error 112)")) << size;
        EXPECT_TRUE(reported(L"Nothing was stored.")) << size;
        expectBefore();
        ASSERT_FALSE(HasFailure()) << size;
    }
    EXPECT_GT(size, 400);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(stored(L"D:\\C"), (std::vector<Rule>{{L"D:\\C", 70}}));
}

TEST_F(RefusingDiskTest, DiskThatDoesNotTakeWhatWasWrittenChangesNothing)
{
    const ImportPatch full(storeModule(), "FlushFileBuffers", &failingFlush);
    ASSERT_EQ(full.count(), 1);
    EXPECT_EQ(attempt(folders_, {{L"D:\\A", 50}}), 0);
    EXPECT_TRUE(reported(L"(error 112)"));
    expectBefore();
}

TEST_F(RefusingDiskTest, FullDiskWhileKnownFoldersOrTrackedRulesAreStored)
{
    addToTrackList(chainOf({{L"D:\\A", 5}}).get());
    const std::string tracked = bytesOf(data() / "tracked-rules.txt");
    const std::string known = bytesOf(data() / "known-folders.txt");
    {
        const ImportPatch full(storeModule(), "WriteFile", &fullDisk);
        room = 30;
        storeKnownPaths(foldersOf({L"D:\\A", L"D:\\B", L"D:\\C"}).get());
        EXPECT_TRUE(reported(L"(error 112)"));
        room = 30;
        addToTrackList(chainOf({{L"D:\\B", 6}}).get());
        EXPECT_TRUE(reported(L"(error 112)"));
    }
    EXPECT_EQ(bytesOf(data() / "tracked-rules.txt"), tracked);
    EXPECT_EQ(bytesOf(data() / "known-folders.txt"), known);
    EXPECT_EQ(namesIn(data()).size(), 4u);
}

TEST_F(RefusingDiskTest, FullDiskWhileADamagedFileIsSetAside)
{
    const auto file = rulesFolder() / namesIn(rulesFolder()).front();
    const std::string damaged = bytesOf(file) + "damage";
    writeBytes(file, damaged);
    {
        const ImportPatch full(storeModule(), "WriteFile", &fullDisk);
        room = 40;
        EXPECT_EQ(stored(L"D:\\A").size(), 1u);
        EXPECT_TRUE(reported(L"cannot be set aside"));
        EXPECT_TRUE(reported(L"(error 112)"));
        room = static_cast<LONGLONG>(damaged.size()) + 10; // the copy fits, its replacement does not
        EXPECT_EQ(stored(L"D:\\A").size(), 1u);
        EXPECT_TRUE(reported(L"cannot be set aside"));
    }
    EXPECT_EQ(bytesOf(file), damaged);
    EXPECT_TRUE(namesIn(setAside()).empty());
    EXPECT_EQ(namesIn(rulesFolder()).size(), 2u);
}

TEST_F(RefusingDiskTest, ReadOnlyDataFolderIsReadAndNotWritten)
{
    const ImportPatch patch(storeModule(), "CreateFileW", &readOnlyDisk);
    ASSERT_EQ(patch.count(), 1);
    EXPECT_EQ(attempt(folders_, {{L"D:\\A", 50}}), 0);
    EXPECT_TRUE(reported(L"cannot be locked"));
    EXPECT_TRUE(reported(L"(error 5)"));
    storeKnownPaths(nullptr);
    EXPECT_TRUE(reported(L"(error 5)"));
    addToTrackList(chainOf({{L"D:\\A"}}).get());
    EXPECT_TRUE(reported(L"(error 5)"));
    expectBefore();
}

TEST_F(RefusingDiskTest, DamagedFileInAReadOnlyDataFolderIsReadAndStays)
{
    const auto file = rulesFolder() / namesIn(rulesFolder()).front();
    const std::string damaged = bytesOf(file) + "damage";
    writeBytes(file, damaged);
    const ImportPatch patch(storeModule(), "CreateFileW", &readOnlyDisk);
    EXPECT_EQ(stored(L"D:\\A").size(), 1u);
    EXPECT_TRUE(reported(L"cannot be set aside"));
    EXPECT_EQ(bytesOf(file), damaged);
}

TEST_F(RefusingDiskTest, OneFileThatCannotBeReplacedDoesNotStopTheOthers)
{
    refusedTarget = namesIn(rulesFolder()).front();
    const bool isA = refusedTarget.starts_with(L"a_");
    ASSERT_TRUE(isA);
    {
        const ImportPatch move(storeModule(), "MoveFileExW", &refusingMove);
        const ImportPatch sleep(storeModule(), "Sleep", &noSleep);
        ASSERT_EQ(move.count() + sleep.count(), 2);
        sleeps = 0;
        EXPECT_EQ(attempt(folders_, {{L"D:\\A", 50}, {L"D:\\B", 60}, {L"D:\\C", 70}}), 0);
        EXPECT_TRUE(reported(L"The rules of \"D:\\A\" cannot be stored"));
        EXPECT_TRUE(reported(L"where the former ones stay"));
        EXPECT_GT(sleeps, 10) << "it is tried for a while";
        EXPECT_LT(sleeps, 1000);
    }
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 5}}));
    EXPECT_EQ(stored(L"D:\\B"), (std::vector<Rule>{{L"D:\\B", 60}}));
    EXPECT_EQ(stored(L"D:\\C"), (std::vector<Rule>{{L"D:\\C", 70}}));
    EXPECT_EQ(namesIn(rulesFolder()).size(), 3u);
}

TEST_F(RefusingDiskTest, ManyFilesThatStayLockedDoNotCostTheWaitEach)
{
    refusedTarget = L".txt";
    const ImportPatch move(storeModule(), "MoveFileExW", &refusingMove);
    const ImportPatch sleep(storeModule(), "Sleep", &noSleep);
    sleeps = 0;
    EXPECT_EQ(attempt(folders_, {{L"D:\\A", 50}, {L"D:\\B", 60}}), 0);
    const int once = sleeps;
    std::vector<std::wstring> folders;
    std::vector<Rule> rules;
    for (int i = 0; i < 50; ++i) {
        folders.push_back(L"D:\\A\\" + std::to_wstring(i));
        rules.push_back({folders.back()});
    }
    storeKnownPaths(nullptr);
    sleeps = 0;
    EXPECT_EQ(attempt(folders, rules), 0);
    EXPECT_LT(sleeps, 2 * once);
}

TEST_F(RefusingDiskTest, FileThatIsOpenElsewhereForAMoment)
{
    const auto file = rulesFolder() / namesIn(rulesFolder()).front();
    static HANDLE holder = INVALID_HANDLE_VALUE;
    holder = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(holder, INVALID_HANDLE_VALUE);
    static std::atomic<int> waits;
    waits = 0;
    const ImportPatch sleep(storeModule(), "Sleep", static_cast<void (*)(DWORD)>([](DWORD) {
                                if (++waits == 3) { // the scanner is through
                                    CloseHandle(holder);
                                }
                            }));
    EXPECT_EQ(attempt({L"D:\\A"}, {{L"D:\\A", 50}}), 1);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(waits, 3);
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 50}}));
}

TEST_F(RefusingDiskTest, LockThatSomeoneKeeps)
{
    const HANDLE lock = CreateFileW((data() / "lornix.lock").c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    OVERLAPPED start{};
    ASSERT_TRUE(LockFileEx(lock, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &start));
    {
        const ImportPatch sleep(storeModule(), "Sleep", &noSleep);
        sleeps = 0;
        EXPECT_EQ(attempt(folders_, {{L"D:\\A", 50}}), 0);
        EXPECT_TRUE(reported(L"cannot be locked against other processes"));
        EXPECT_GT(sleeps, 100);
        expectBefore();
    }
    CloseHandle(lock);
    EXPECT_EQ(attempt({L"D:\\A"}, {{L"D:\\A", 50}}), 1);
}

} // namespace
