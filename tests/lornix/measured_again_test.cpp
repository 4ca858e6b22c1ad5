// Sizes that are asked for again: what is measured once, and what is looked at anew.
#include "later_clock.h"
#include "tree_test.h"

#include "tests/support/faulting_call.h"
#include "tests/support/import_patch.h"

#include <sddl.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>

namespace {

using namespace store_test;

constexpr const wchar_t* kAlice = L"S-1-5-21-1-2-3-1001";
constexpr const wchar_t* kBob = L"S-1-5-21-1-2-3-1002";

std::atomic<int> ownersRead = 0;

/// Files are alice's or bob's as their names start; those of nobody are denied.
BOOL WINAPI securityByName(const wchar_t* file, SECURITY_INFORMATION, void* descriptor, DWORD size,
                           DWORD* needed)
{
    ++ownersRead;
    const std::wstring name = std::filesystem::path(file).filename().wstring();
    if (name.front() == L'n') {
        SetLastError(ERROR_SHARING_VIOLATION);
        return FALSE;
    }
    PSECURITY_DESCRIPTOR made = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
        (std::wstring(L"O:") + (name.front() == L'a' ? kAlice : kBob)).c_str(), SDDL_REVISION_1, &made,
        nullptr));
    *needed = GetSecurityDescriptorLength(made);
    EXPECT_LE(*needed, size);
    memcpy(descriptor, made, *needed);
    LocalFree(made);
    return TRUE;
}

std::atomic<int> foldersRead = 0;

HANDLE WINAPI countedOpen(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                          DWORD disposition, DWORD flags, HANDLE templateFile)
{
    foldersRead += (flags & FILE_FLAG_BACKUP_SEMANTICS) != 0 ? 1 : 0;
    return CreateFileW(name, access, share, security, disposition, flags, templateFile);
}

class MeasuredAgainTest : public TreeTest {
protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        ASSERT_EQ(m_security.count() + m_folders.count(), 2);
        makeFile(in(L"a1"), 1);
        makeFile(in(L"b1"), 20);
        makeFolder(in(L"below"));
        makeFile(in(L"below\\a2"), 300);
    }

    std::int64_t of(const std::wstring& account) const
    {
        return getRealSizeByOwner(
            m_top.c_str(), Sids(appendToSidList(createEmptySidList(), sidOf(account).release())).get());
    }

private:
    ImportPatch m_security{storeModule(), "GetFileSecurityW", &securityByName};
    ImportPatch m_folders{storeModule(), "CreateFileW", &countedOpen};
};

TEST_F(MeasuredAgainTest, TheOwnersOfAnUnchangedTreeAreReadOnce)
{
    ownersRead = 0;
    EXPECT_EQ(of(kAlice), 301);
    EXPECT_EQ(of(kBob), 20);
    EXPECT_EQ(of(L"S-1-5-32-544"), 0);
    EXPECT_EQ(ownersRead, 3);

    // However the folder is spelled.
    std::wstring spelled = m_top + L"/";
    std::transform(spelled.begin(), spelled.end(), spelled.begin(), towupper);
    const Sids bob(appendToSidList(createEmptySidList(), sidOf(kBob).release()));
    EXPECT_EQ(getRealSizeByOwner(spelled.c_str(), bob.get()), 20);
    EXPECT_EQ(ownersRead, 3);
    EXPECT_EQ(getRealSizeByOwner(in(L"below").c_str(), bob.get()), 0) << "another tree";
    EXPECT_EQ(ownersRead, 4);
}

TEST_F(MeasuredAgainTest, WhateverChangesIsSeen)
{
    EXPECT_EQ(of(kAlice), 301);
    makeFile(in(L"below\\a3"), 4000);
    EXPECT_EQ(of(kAlice), 4301);
    {
        std::filesystem::resize_file(in(L"a1"), 2);
        EXPECT_EQ(of(kAlice), 4302);
    }
    EXPECT_TRUE(DeleteFileW(in(L"below\\a2").c_str()));
    EXPECT_EQ(of(kAlice), 4002);
    // Another owner's file of the same size and time takes the place of one: only the folder tells.
    std::filesystem::rename(in(L"below\\a3"), in(L"below\\b3"));
    EXPECT_EQ(of(kAlice), 2);
    EXPECT_EQ(of(kBob), 4020);
}

LONGLONG addedToChange = 0;

/// As if the owner of a file had been changed, which a folder tells by the time of that.
BOOL WINAPI readWithOtherChange(HANDLE folder, FILE_INFO_BY_HANDLE_CLASS what, void* buffer, DWORD size)
{
    const BOOL done = GetFileInformationByHandleEx(folder, what, buffer, size);
    if (done) {
        static_cast<FILE_ID_BOTH_DIR_INFO*>(buffer)->ChangeTime.QuadPart += addedToChange;
    }
    return done;
}

TEST_F(MeasuredAgainTest, AChangedOwnerIsSeenByTheTimeOfItsChange)
{
    const ImportPatch read(storeModule(), "GetFileInformationByHandleEx", &readWithOtherChange);
    ASSERT_EQ(read.count(), 1);
    addedToChange = 0;
    of(kAlice);
    ownersRead = 0;
    of(kAlice);
    EXPECT_EQ(ownersRead, 0);
    addedToChange = 1;
    of(kAlice);
    EXPECT_EQ(ownersRead, 3);
}

TEST_F(MeasuredAgainTest, BothSizesOfADialogComeFromOneWalk)
{
    const ImportPatch time(storeModule(), "GetTickCount64", &laterTime);
    ASSERT_GE(time.count(), 1);
    addedTime = 0;
    of(kAlice);
    const auto walks = [&](auto call) {
        foldersRead = 0;
        call();
        return foldersRead / 2; // the top and the one below
    };
    const auto size = [&] {
        EXPECT_EQ(getRealSize(m_top.c_str()), 321);
    };
    EXPECT_EQ(walks([&] {
                  size();
                  EXPECT_EQ(of(kAlice), 301);
              }),
              1);
    EXPECT_EQ(walks([&] { EXPECT_EQ(of(kBob), 20); }), 1) << "one walk serves one question";
    EXPECT_EQ(walks([&] {
                  size();
                  size();
                  EXPECT_EQ(of(kBob), 20);
              }),
              2);
    size();
    addedTime = 1001;
    EXPECT_EQ(walks([&] { EXPECT_EQ(of(kBob), 20); }), 1) << "too old";
    size();
    makeFile(in(L"b4"), 5);
    EXPECT_EQ(of(kBob), 25) << "changed meanwhile";
}

TEST_F(MeasuredAgainTest, OwnersThatCannotBeReadAreToldInNumbers)
{
    makeFile(in(L"n1"), 5000);
    makeFile(in(L"below\\n2"), 60000);
    for (int i = 0; i < 2; ++i) { // the second time from what was measured
        EXPECT_EQ(of(kAlice), 301);
        EXPECT_TRUE(
            reported(L"The owner of 2 files under \"" + m_top + L"\", with 65000 bytes, could not be read"));
        EXPECT_TRUE(reported(L"(error 32)"));
    }
}

TEST_F(MeasuredAgainTest, FarMoreTreesThanAreRemembered)
{
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 100; ++i) {
            const std::wstring folder = in(std::to_wstring(i));
            if (round == 0) {
                makeFolder(folder);
                makeFile(folder + L"\\a", i + 1);
            }
            const Sids alice(appendToSidList(createEmptySidList(), sidOf(kAlice).release()));
            EXPECT_EQ(getRealSizeByOwner(folder.c_str(), alice.get()), i + 1);
        }
    }
}

// ---- several threads

constexpr int kManyFiles = 2000;

class ManyOwnersTest : public TreeTest {
protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        for (int i = 0; i < kManyFiles; ++i) {
            makeFile(in((i % 2 == 0 ? L"a" : L"b") + std::to_wstring(i)), i % 2 == 0 ? 1 : 100);
        }
    }

    std::int64_t alices() const
    {
        return getRealSizeByOwner(m_top.c_str(),
                                  Sids(appendToSidList(createEmptySidList(), sidOf(kAlice).release())).get());
    }
};

std::mutex threadGuard;
std::set<DWORD> threads;
DWORD callersThread = 0;

std::size_t threadsSeen()
{
    const std::lock_guard lock(threadGuard);
    threads.insert(GetCurrentThreadId());
    return threads.size();
}

constexpr std::size_t kLeastThreads = 4; // on one processor too: they mostly wait

std::atomic<int> waitsForOthers = 0;

/// The first files of each thread wait until the others are at work too, for ten seconds in all.
BOOL WINAPI securityByOthers(const wchar_t* file, SECURITY_INFORMATION what, void* descriptor, DWORD size,
                             DWORD* needed)
{
    while (threadsSeen() < kLeastThreads && ++waitsForOthers < 10000) {
        Sleep(1);
    }
    return securityByName(file, what, descriptor, size, needed);
}

TEST_F(ManyOwnersTest, AreReadBySeveralThreads)
{
    const ImportPatch security(storeModule(), "GetFileSecurityW", &securityByOthers);
    threads.clear();
    waitsForOthers = 0;
    EXPECT_EQ(alices(), kManyFiles / 2);
    EXPECT_GE(threads.size(), kLeastThreads);
    EXPECT_STREQ(lornixLastError(), L"");
}

/// Which token the calling thread acts with.
LUID actsAs()
{
    HANDLE token = nullptr;
    TOKEN_STATISTICS about{};
    DWORD size = 0;
    if (OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) {
        EXPECT_TRUE(GetTokenInformation(token, TokenStatistics, &about, sizeof about, &size));
        CloseHandle(token);
    }
    return about.TokenId;
}

LUID callersToken{};
std::atomic<int> actingForOthers = 0;

BOOL WINAPI securityForTheCaller(const wchar_t* file, SECURITY_INFORMATION what, void* descriptor, DWORD size,
                                 DWORD* needed)
{
    const LUID token = actsAs();
    actingForOthers += memcmp(&token, &callersToken, sizeof token) != 0 ? 1 : 0;
    return securityByOthers(file, what, descriptor, size, needed);
}

TEST_F(ManyOwnersTest, AreReadForWhomTheCallerActs)
{
    const ImportPatch security(storeModule(), "GetFileSecurityW", &securityForTheCaller);
    ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
    callersToken = actsAs();
    actingForOthers = 0;
    threads.clear();
    waitsForOthers = 0;
    EXPECT_EQ(alices(), kManyFiles / 2);
    EXPECT_GE(threads.size(), kLeastThreads);
    EXPECT_EQ(actingForOthers, 0);
    RevertToSelf();
}

BOOL WINAPI securityWithAFault(const wchar_t* file, SECURITY_INFORMATION what, void* descriptor, DWORD size,
                               DWORD* needed)
{
    if (GetCurrentThreadId() != callersThread) {
        RaiseException(0xC0000006, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    }
    Sleep(1); // so that the others come to it
    return securityByName(file, what, descriptor, size, needed);
}

TEST_F(ManyOwnersTest, AFaultOfAThreadGoesOnInTheCallers)
{
    callersThread = GetCurrentThreadId();
    {
        const ImportPatch security(storeModule(), "GetFileSecurityW", &securityWithAFault);
        EXPECT_EQ(faultOf([&] { alices(); }), 0xC0000006u);
    }
    const ImportPatch security(storeModule(), "GetFileSecurityW", &securityByName);
    EXPECT_EQ(alices(), kManyFiles / 2) << "and all is well afterwards";
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) << "no right is left on";
}

} // namespace
