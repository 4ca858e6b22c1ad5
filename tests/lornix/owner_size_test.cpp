// Sizes of the files that some accounts own.
#include "tree_test.h"

#include "tests/support/import_patch.h"

#include <sddl.h>

#include <algorithm>

namespace {

using namespace store_test;

class OwnerTest : public TreeTest {
protected:
    static Block<void> me()
    {
        HANDLE token = nullptr;
        alignas(TOKEN_USER) BYTE user[256];
        DWORD size = 0;
        EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
        EXPECT_TRUE(GetTokenInformation(token, TokenUser, user, sizeof user, &size));
        CloseHandle(token);
        return Block<void>(sidDup(reinterpret_cast<TOKEN_USER*>(user)->User.Sid));
    }

    static Sids listOf(const std::vector<std::wstring>& accounts)
    {
        SidList* list = createEmptySidList();
        for (const std::wstring& account : accounts) {
            list = appendToSidList(list, sidOf(account).release());
        }
        return Sids(list);
    }
};

TEST_F(OwnerTest, OwnFilesAreOwned)
{
    makeFile(in(L"a"), 5);
    makeFolder(in(L"x"));
    makeFile(in(L"x\\b"), 70);
    const Sids mine(appendToSidList(createEmptySidList(), me().release()));
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), mine.get()), 75);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), listOf({L"S-1-5-32-546"}).get()), 0);
}

std::vector<std::wstring> asked;

/// Files are owned by what their names start with, and "denied" is.
BOOL WINAPI ownerByName(const wchar_t* file, SECURITY_INFORMATION what, void* descriptor, DWORD size,
                        DWORD* needed)
{
    EXPECT_EQ(what, static_cast<SECURITY_INFORMATION>(OWNER_SECURITY_INFORMATION));
    const std::wstring name = std::filesystem::path(file).filename().wstring();
    asked.push_back(name);
    const wchar_t* text = nullptr;
    switch (name.front()) {
    case L'a':
        text = L"O:S-1-5-21-1-2-3-1001";
        break;
    case L'b':
        text = L"O:S-1-5-21-1-2-3-1002";
        break;
    case L'l':
        text = L"O:S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15";
        break;
    case L'n':
        text = L"G:BA";
        break;
    default:
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    PSECURITY_DESCRIPTOR made = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &made, nullptr));
    *needed = GetSecurityDescriptorLength(made);
    const bool fits = *needed <= size;
    EXPECT_TRUE(fits) << *needed;
    if (fits) {
        memcpy(descriptor, made, *needed);
    }
    LocalFree(made);
    return fits;
}

TEST_F(OwnerTest, OnlyFilesOfTheListedAccountsCount)
{
    makeFile(in(L"a1"), 1);
    makeFile(in(L"a2"), 20);
    makeFile(in(L"b1"), 300);
    makeFile(in(L"l1"), 4000);
    makeFile(in(L"n1"), 50000);
    makeFile(in(L"denied"), 600000);
    makeFile(in(L"a empty"), 0);
    const ImportPatch security(storeModule(), "GetFileSecurityW", &ownerByName);
    ASSERT_EQ(security.count(), 1);
    const std::wstring a = L"S-1-5-21-1-2-3-1001";
    const std::wstring b = L"S-1-5-21-1-2-3-1002";
    const std::wstring longest = L"S-1-5-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15";
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), listOf({a}).get()), 21);
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), listOf({b, a}).get()), 321);
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), listOf({a, a, a}).get()), 21);
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), listOf({longest}).get()), 4000);
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), listOf({L"S-1-5-32-544"}).get()), 0);
    EXPECT_EQ(std::count(asked.begin(), asked.end(), L"a empty"), 0) << "an empty file changes nothing";
}

BOOL WINAPI securityOfTheVanished(const wchar_t* file, SECURITY_INFORMATION what, void* descriptor,
                                  DWORD size, DWORD* needed)
{
    if (std::filesystem::path(file).filename() == L"gone") {
        EXPECT_TRUE(DeleteFileW(file));
    }
    return GetFileSecurityW(file, what, descriptor, size, needed);
}

TEST_F(OwnerTest, FilesThatVanishMeanwhileCountAs0)
{
    makeFile(in(L"stays"), 5);
    makeFile(in(L"gone"), 1000);
    const ImportPatch security(storeModule(), "GetFileSecurityW", &securityOfTheVanished);
    ASSERT_EQ(security.count(), 1);
    const Sids mine(appendToSidList(createEmptySidList(), me().release()));
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), mine.get()), 5);
    EXPECT_STREQ(lornixLastError(), L"");
}

TEST_F(OwnerTest, ManyAccountsDoNotSlowTheWalk)
{
    makeFile(in(L"a1"), 1);
    const ImportPatch security(storeModule(), "GetFileSecurityW", &ownerByName);
    std::vector<std::wstring> accounts;
    for (int i = 0; i < 3000; ++i) {
        accounts.push_back(L"S-1-5-21-1-2-3-" + std::to_wstring(i));
    }
    const Sids list = listOf(accounts);
    asked.clear();
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), list.get()), 1);
    EXPECT_EQ(asked.size(), 1u);
}

TEST_F(OwnerTest, NobodyOwnsNothing)
{
    makeFile(in(L"a1"), 1);
    const ImportPatch security(storeModule(), "GetFileSecurityW", &ownerByName);
    asked.clear();
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), nullptr), 0);
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), Sids(createEmptySidList()).get()), 0);
    std::uint8_t invalid[] = {9, 9, 9, 9, 9, 9, 9, 9};
    SidList odd{1, {invalid}};
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), &odd), 0);
    SidList null{1, {nullptr}};
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), &null), 0);
    EXPECT_TRUE(asked.empty());
}

TEST_F(OwnerTest, MissingFolderIsReported)
{
    EXPECT_EQ(getRealSizeByOwner(in(L"missing").c_str(), listOf({L"S-1-5-32-544"}).get()), 0);
    EXPECT_TRUE(reported(L"cannot be measured"));
    EXPECT_EQ(getRealSizeByOwner(nullptr, listOf({L"S-1-5-32-544"}).get()), 0);
    EXPECT_TRUE(reported(L"No folder was given"));
}

} // namespace
