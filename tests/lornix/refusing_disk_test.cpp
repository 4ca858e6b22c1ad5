// Disks that are full, read-only, locked: nothing that was stored is lost, and the report says why.
#include "held_files.h"
#include "later_clock.h"

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
    const std::vector<std::wstring> m_folders{L"D:\\A", L"D:\\B", L"D:\\C"};
    const std::vector<Rule> m_before{{L"D:\\A", 5}, {L"D:\\B", 6}};

    void SetUp() override
    {
        StoreTest::SetUp();
        store(m_folders, m_before);
    }

    /// The lock of the store, in the hands of somebody else until the handle is closed.
    HANDLE keepLock() const
    {
        const HANDLE lock = CreateFileW((data() / "lornix.lock").c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        OVERLAPPED start{};
        EXPECT_TRUE(LockFileEx(lock, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &start));
        return lock;
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
        EXPECT_EQ(namesIn(data()), (std::vector<std::wstring>{L"lornix.lock", L"rules.txt"}))
            << "nothing half written stays";
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
        if (attempt(m_folders, after) != 0) {
            break;
        }
        EXPECT_TRUE(reported(L"(error 112)")) << size;
        EXPECT_TRUE(reported(L"Nothing was stored.")) << size;
        expectBefore();
        ASSERT_FALSE(HasFailure()) << size;
    }
    EXPECT_GT(size, 150);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(stored(L"D:\\C"), (std::vector<Rule>{{L"D:\\C", 70}}));
}

TEST_F(RefusingDiskTest, DiskThatDoesNotTakeWhatWasWrittenChangesNothing)
{
    const ImportPatch full(storeModule(), "FlushFileBuffers", &failingFlush);
    ASSERT_EQ(full.count(), 1);
    EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}}), 0);
    EXPECT_TRUE(reported(L"(error 112)"));
    expectBefore();
}

TEST_F(RefusingDiskTest, FullDiskWhileKnownFoldersOrTrackedRulesAreStored)
{
    addToTrackList(chainOf({{L"D:\\A", 5}}).get());
    const std::string tracked = bytesOf(data() / "tracked-rules.txt");
    const std::string known = bytesOf(rulesFile());
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
    EXPECT_EQ(bytesOf(rulesFile()), known);
    EXPECT_EQ(namesIn(data()).size(), 3u);
}

TEST_F(RefusingDiskTest, FullDiskWhileADamagedFileIsSetAside)
{
    const std::string damaged = bytesOf(rulesFile()) + "damage";
    writeBytes(rulesFile(), damaged);
    {
        const ImportPatch full(storeModule(), "WriteFile", &fullDisk);
        room = 40;
        EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}}), 0);
        EXPECT_TRUE(reported(L"cannot be set aside"));
        EXPECT_TRUE(reported(L"(error 112)"));
        room = static_cast<LONGLONG>(damaged.size()) + 10; // the copy fits, its replacement does not
        EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}}), 0);
        EXPECT_TRUE(reported(L"(error 112)"));
    }
    EXPECT_EQ(bytesOf(rulesFile()), damaged);
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_F(RefusingDiskTest, ReadOnlyDataFolderIsReadAndNotWritten)
{
    const ImportPatch patch(storeModule(), "CreateFileW", &readOnlyDisk);
    ASSERT_EQ(patch.count(), 1);
    EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}}), 0);
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
    const std::string damaged = bytesOf(rulesFile()) + "damage";
    writeBytes(rulesFile(), damaged);
    const ImportPatch patch(storeModule(), "CreateFileW", &readOnlyDisk);
    EXPECT_EQ(stored(L"D:\\A").size(), 1u);
    EXPECT_TRUE(reported(L"is damaged"));
    EXPECT_EQ(bytesOf(rulesFile()), damaged);
}

TEST_F(RefusingDiskTest, FileThatCannotBeReplacedStaysForAllFolders)
{
    const ImportPatch move(storeModule(), "MoveFileExW", &refusingMove);
    const ImportPatch sleep(storeModule(), "Sleep", &noSleep);
    ASSERT_EQ(move.count() + sleep.count(), 2);
    refusedTarget = L"rules.txt";
    sleeps = 0;
    EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}, {L"D:\\B", 60}, {L"D:\\C", 70}}), 0);
    EXPECT_TRUE(reported(L"The file with the rules cannot be written"));
    EXPECT_TRUE(reported(L"Nothing was stored."));
    EXPECT_GT(sleeps, 10) << "it is tried for a while";
    EXPECT_LT(sleeps, 1000);
    expectBefore();
}

TEST_F(RefusingDiskTest, WaitingForFilesIsCountedOverCallsThatFollowEachOther)
{
    const ImportPatch sleep(storeModule(), "Sleep", &noSleep);
    const ImportPatch clock(storeModule(), "GetTickCount64", &laterTime);
    ASSERT_EQ(clock.count(), 1);
    const HeldFiles held;
    addedTime = 0;
    sleeps = 0;
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_TRUE(reported(L"(error 32)"));
    const int once = sleeps;
    EXPECT_GT(once, 10);
    for (int i = 0; i < 30; ++i) { // a panel that starts with as many folders
        stored(L"D:\\" + std::to_wstring(i));
        loadExcludes();
    }
    EXPECT_EQ(sleeps, once);
    sleeps = 0;
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(attempt({L"D:\\A"}, {{L"D:\\A", 50}}), 0);
    }
    EXPECT_EQ(sleeps, 0) << "a lock that cannot be opened is no lock that somebody has";
    addedTime = 1001; // somebody reads what was reported
    stored(L"D:\\A");
    EXPECT_EQ(sleeps, once) << "another call of the host";
}

TEST_F(RefusingDiskTest, ALockThatSomeoneKeepsIsWaitedForOnce)
{
    const HANDLE lock = keepLock();
    const ImportPatch sleep(storeModule(), "Sleep", &noSleep);
    const ImportPatch clock(storeModule(), "GetTickCount64", &laterTime);
    addedTime = 0;
    sleeps = 0;
    EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}}), 0);
    const int once = sleeps;
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}}), 0);
    }
    EXPECT_EQ(sleeps, once);
    CloseHandle(lock);
}

TEST_F(RefusingDiskTest, FileThatIsOpenElsewhereForAMoment)
{
    const auto file = rulesFile();
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
    const HANDLE lock = keepLock();
    {
        const ImportPatch sleep(storeModule(), "Sleep", &noSleep);
        sleeps = 0;
        EXPECT_EQ(attempt(m_folders, {{L"D:\\A", 50}}), 0);
        EXPECT_TRUE(reported(L"cannot be locked against other processes"));
        EXPECT_GT(sleeps, 100);
        expectBefore();
    }
    CloseHandle(lock);
    EXPECT_EQ(attempt({L"D:\\A"}, {{L"D:\\A", 50}}), 1);
}

} // namespace
