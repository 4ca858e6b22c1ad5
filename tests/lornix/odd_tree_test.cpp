// Sizes of trees with links, of trees that refuse, that change meanwhile, that are as deep as a path can be.
#include "debug_lines.h"
#include "tree_test.h"

#include "tests/support/import_patch.h"

#include <algorithm>

namespace {

using namespace store_test;

using OddTreeTest = TreeTest;

/// A list of the account that owns a file.
Sids ownersOf(const std::wstring& file)
{
    alignas(SECURITY_DESCRIPTOR) BYTE descriptor[256];
    DWORD needed = 0;
    PSID owner = nullptr;
    BOOL isDefault = FALSE;
    EXPECT_TRUE(
        GetFileSecurityW(file.c_str(), OWNER_SECURITY_INFORMATION, descriptor, sizeof descriptor, &needed));
    EXPECT_TRUE(GetSecurityDescriptorOwner(descriptor, &owner, &isDefault));
    return Sids(appendToSidList(createEmptySidList(), sidDup(owner)));
}

// ---- things that a tree does only now and then

std::wstring changedName;
DWORD changedAttributes = 0;
DWORD changedTag = 0;

BOOL WINAPI readChanged(HANDLE folder, FILE_INFO_BY_HANDLE_CLASS what, void* buffer, DWORD size)
{
    if (!GetFileInformationByHandleEx(folder, what, buffer, size)) {
        return FALSE;
    }
    EXPECT_EQ(what, FileIdBothDirectoryInfo);
    for (auto* bytes = static_cast<std::byte*>(buffer);;) {
        auto* entry = reinterpret_cast<FILE_ID_BOTH_DIR_INFO*>(bytes);
        if (std::wstring_view(entry->FileName, entry->FileNameLength / sizeof(wchar_t)) == changedName) {
            entry->FileAttributes |= changedAttributes;
            entry->EaSize = changedTag;
        }
        if (entry->NextEntryOffset == 0) {
            return TRUE;
        }
        bytes += entry->NextEntryOffset;
    }
}

TEST_F(OddTreeTest, LinksAreNotFollowed)
{
    makeFolder(in(L"real"));
    makeFile(in(L"real\\a"), 5);
    makeFolder(in(L"link"));
    makeFile(in(L"link\\far away"), 1000);
    EXPECT_EQ(getRealSize(m_top.c_str()), 1005);

    // What a folder shows of a link or a mount point is this attribute.
    const ImportPatch read(storeModule(), "GetFileInformationByHandleEx", &readChanged);
    ASSERT_EQ(read.count(), 1);
    changedName = L"link";
    changedAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    // Some systems do not tell which.
    for (const DWORD tag : {IO_REPARSE_TAG_SYMLINK, IO_REPARSE_TAG_MOUNT_POINT, 0ul}) {
        changedTag = tag;
        const DebugLines debug;
        EXPECT_EQ(getRealSize(m_top.c_str()), 5) << tag;
        EXPECT_EQ(debug.with("1 link under"), 1) << tag;
        EXPECT_STREQ(lornixLastError(), L"") << "a link is no failure";
    }
    EXPECT_EQ(getRealSize(in(L"link").c_str()), 1000) << "a link that is named itself is meant";
}

TEST_F(OddTreeTest, FoldersWhoseFilesAreFetchedWhenTheyAreReadAreNoLinks)
{
    constexpr DWORD kCloud = 0x9000001A; // not every set of headers has its name
    makeFolder(in(L"synchronized"));
    makeFile(in(L"synchronized\\a"), 1000);
    const ImportPatch read(storeModule(), "GetFileInformationByHandleEx", &readChanged);
    ASSERT_EQ(read.count(), 1);
    changedName = L"synchronized";
    changedAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    changedTag = kCloud;
    EXPECT_EQ(getRealSize(m_top.c_str()), 1000);
}

TEST_F(OddTreeTest, RealLinksAreNotFollowed)
{
    makeFolder(in(L"real"));
    makeFile(in(L"real\\a"), 5);
    makeFile(in(L"b"), 70);
    if (!makeLink(in(L"link"), L"real") || !makeLink(in(L"real\\loop"), L"..\\real")) {
        GTEST_SKIP() << "this system makes no links";
    }
    EXPECT_EQ(getRealSize(m_top.c_str()), 75);
    EXPECT_EQ(getRealSize(in(L"link").c_str()), 5);
}

TEST_F(OddTreeTest, FilesThatOnlyLookLikeLinksCount)
{
    makeFile(in(L"deduplicated"), 5);
    const ImportPatch read(storeModule(), "GetFileInformationByHandleEx", &readChanged);
    ASSERT_EQ(read.count(), 1);
    changedName = L"deduplicated";
    changedAttributes = FILE_ATTRIBUTE_REPARSE_POINT;
    EXPECT_EQ(getRealSize(m_top.c_str()), 5);
}

std::wstring deniedName;

bool isDenied(const wchar_t* name)
{
    return std::filesystem::path(name).parent_path().filename() == deniedName ||
           std::filesystem::path(name).filename() == deniedName;
}

HANDLE WINAPI openDenied(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                         DWORD disposition, DWORD flags, HANDLE templateFile)
{
    if (isDenied(name)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return CreateFileW(name, access, share, security, disposition, flags, templateFile);
}

TEST_F(OddTreeTest, FoldersThatDenyAccessAreCountedAndTold)
{
    makeFile(in(L"a"), 5);
    makeFolder(in(L"denied"));
    makeFile(in(L"denied\\b"), 1000);
    makeFolder(in(L"open"));
    makeFile(in(L"open\\c"), 70);
    makeFolder(in(L"open\\denied"));
    const ImportPatch open(storeModule(), "CreateFileW", &openDenied);
    ASSERT_EQ(open.count(), 1);
    deniedName = L"denied";
    EXPECT_EQ(getRealSize(m_top.c_str()), 75);
    EXPECT_TRUE(reported(L"2 folders under \"" + m_top + L"\" could not be read and did not count"));
    EXPECT_TRUE(reported(L"denied\": ")) << "the first of them";
    EXPECT_TRUE(reported(L"(error 5)"));
    EXPECT_EQ(getRealSize(in(L"open").c_str()), 70);
    EXPECT_TRUE(reported(L"1 folder under"));
    EXPECT_EQ(getRealSize(in(L"denied").c_str()), 0);
    EXPECT_TRUE(reported(L"cannot be measured"));
    EXPECT_TRUE(reported(L"(error 5)"));
}

/// Whether the calling thread acts with the right to read for backups switched on.
bool mayBackUp()
{
    HANDLE token = nullptr;
    if (!OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) {
        return false;
    }
    PRIVILEGE_SET wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Control = PRIVILEGE_SET_ALL_NECESSARY;
    BOOL has = FALSE;
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, SE_BACKUP_NAME, &wanted.Privilege[0].Luid));
    EXPECT_TRUE(PrivilegeCheck(token, &wanted, &has));
    CloseHandle(token);
    return has != FALSE;
}

/// As a disk with lists of rights has it: a home folder that denies administrators, open to who makes a backup.
HANDLE WINAPI openHome(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                       DWORD disposition, DWORD flags, HANDLE templateFile)
{
    if (isDenied(name) && ((flags & FILE_FLAG_BACKUP_SEMANTICS) == 0 || !mayBackUp())) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return CreateFileW(name, access, share, security, disposition, flags, templateFile);
}

/// The file has no name for backups: it is denied to everybody.
BOOL WINAPI securityOfHome(const wchar_t* name, SECURITY_INFORMATION what, void* descriptor, DWORD size,
                           DWORD* needed)
{
    if (isDenied(name)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    return GetFileSecurityW(name, what, descriptor, size, needed);
}

HANDLE WINAPI searchHome(const wchar_t* name, FINDEX_INFO_LEVELS level, void* found, FINDEX_SEARCH_OPS search,
                         void* filter, DWORD flags)
{
    if (isDenied(name)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    return FindFirstFileExW(name, level, found, search, filter, flags);
}

TEST_F(OddTreeTest, FoldersThatDenyAdministratorsAreReadAsForABackup)
{
    makeFile(in(L"a"), 5);
    makeFolder(in(L"home"));
    makeFile(in(L"home\\b"), 1000);
    deniedName = L"home";
    const ImportPatch open(storeModule(), "CreateFileW", &openHome);
    const ImportPatch security(storeModule(), "GetFileSecurityW", &securityOfHome);
    const ImportPatch search(storeModule(), "FindFirstFileExW", &searchHome);
    ASSERT_EQ(open.count() + security.count(), 2);
    EXPECT_EQ(getRealSize(m_top.c_str()), 1005);
    EXPECT_EQ(getRealSize(in(L"home").c_str()), 1000);
    EXPECT_EQ(getRealSizeByOwner(m_top.c_str(), ownersOf(in(L"home\\b")).get()), 1005);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_FALSE(mayBackUp()) << "only while it measures";
    HANDLE token = nullptr;
    EXPECT_FALSE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token));
}

TEST_F(OddTreeTest, AThreadThatActsForSomebodyGoesOnDoingSo)
{
    makeFile(in(L"a"), 5);
    ASSERT_TRUE(ImpersonateSelf(SecurityImpersonation));
    EXPECT_EQ(getRealSize(m_top.c_str()), 5);
    EXPECT_FALSE(mayBackUp());
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token));
    CloseHandle(token);
    RevertToSelf();
}

std::wstring vanishing;
int reads = 0;

BOOL WINAPI readVanishing(HANDLE folder, FILE_INFO_BY_HANDLE_CLASS what, void* buffer, DWORD size)
{
    if (++reads == 2) {
        EXPECT_TRUE(removeTree(vanishing));
    }
    return GetFileInformationByHandleEx(folder, what, buffer, size);
}

TEST_F(OddTreeTest, FoldersThatVanishMeanwhileAreLeftOut)
{
    for (const wchar_t* name : {L"1", L"2", L"3", L"4", L"5", L"6"}) {
        makeFolder(in(name));
        makeFile(in(name) + L"\\a", 10);
        makeFolder(in(name) + L"\\below");
        makeFile(in(name) + L"\\below\\b", 10);
    }
    vanishing = in(L"3");
    reads = 0;
    const ImportPatch read(storeModule(), "GetFileInformationByHandleEx", &readVanishing);
    ASSERT_EQ(read.count(), 1);
    EXPECT_EQ(getRealSize(m_top.c_str()), 100);
    EXPECT_STREQ(lornixLastError(), L"");
}

int readsUntilError = 0;

BOOL WINAPI readWithError(HANDLE folder, FILE_INFO_BY_HANDLE_CLASS what, void* buffer, DWORD size)
{
    if (readsUntilError-- == 0) {
        SetLastError(ERROR_CRC);
        return FALSE;
    }
    return GetFileInformationByHandleEx(folder, what, buffer, size);
}

TEST_F(OddTreeTest, AFolderThatBreaksOffIsTold)
{
    makeFolder(in(L"broken"));
    makeFile(in(L"broken\\b"), 1000);
    makeFile(in(L"a"), 5);
    const ImportPatch read(storeModule(), "GetFileInformationByHandleEx", &readWithError);
    ASSERT_EQ(read.count(), 1);
    readsUntilError = 2; // the top: its entries and its end
    EXPECT_EQ(getRealSize(m_top.c_str()), 5);
    EXPECT_TRUE(reported(L"1 folder under"));
    EXPECT_TRUE(reported(L"broken\""));
    EXPECT_TRUE(reported(L"(error 23)"));
}

// ---- a tree as deep as a path can be, which no disk has to hold

constexpr std::size_t kLongestPath = 32767;
int readsLeft = 0; // of the folder that is open: its entries, then the end
int openFolders = 0;
int mostOpenFolders = 0;

HANDLE WINAPI openDeep(const wchar_t* name, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE)
{
    if (wcslen(name) > kLongestPath) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return INVALID_HANDLE_VALUE;
    }
    readsLeft = 1;
    mostOpenFolders = std::max(mostOpenFolders, ++openFolders);
    return &openFolders;
}

std::byte* describe(void* buffer, const wchar_t* name, DWORD attributes, LONGLONG size)
{
    auto* entry = static_cast<FILE_ID_BOTH_DIR_INFO*>(buffer);
    *entry = {};
    entry->FileAttributes = attributes;
    entry->EndOfFile.QuadPart = size;
    entry->FileNameLength = static_cast<DWORD>(wcslen(name) * sizeof(wchar_t));
    memcpy(entry->FileName, name, entry->FileNameLength);
    entry->NextEntryOffset = static_cast<DWORD>(sizeof *entry);
    return static_cast<std::byte*>(buffer) + entry->NextEntryOffset;
}

BOOL WINAPI readDeep(HANDLE, FILE_INFO_BY_HANDLE_CLASS, void* buffer, DWORD)
{
    if (readsLeft-- == 0) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    void* const folder = describe(buffer, L"f", FILE_ATTRIBUTE_NORMAL, 1);
    describe(folder, L"d", FILE_ATTRIBUTE_DIRECTORY, 0);
    static_cast<FILE_ID_BOTH_DIR_INFO*>(folder)->NextEntryOffset = 0;
    return TRUE;
}

BOOL WINAPI closeDeep(HANDLE handle)
{
    if (handle != &openFolders) {
        return CloseHandle(handle);
    }
    --openFolders;
    return TRUE;
}

TEST_F(OddTreeTest, NoDepthIsTooDeep)
{
    const ImportPatch open(storeModule(), "CreateFileW", &openDeep);
    const ImportPatch read(storeModule(), "GetFileInformationByHandleEx", &readDeep);
    const ImportPatch close(storeModule(), "CloseHandle", &closeDeep);
    ASSERT_EQ(open.count() + read.count() + close.count(), 3);
    const std::size_t prefix = std::wstring(L"\\\\?\\D:").size();
    EXPECT_EQ(getRealSize(L"D:\\"), static_cast<std::int64_t>((kLongestPath - prefix) / 2 + 1));
    EXPECT_TRUE(reported(L"1 folder under")) << "the one that no path leads to";
    EXPECT_EQ(openFolders, 0);
    EXPECT_EQ(mostOpenFolders, 1);
}

} // namespace
