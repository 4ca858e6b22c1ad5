// The data folder: chosen, from the environment, made, gone.
#include "store_test.h"

#include "store/owned.h"
#include "tests/support/import_patch.h"

#include <aclapi.h>
#include <sddl.h>

#include <set>

namespace {

using namespace store_test;

using DataFolderTest = StoreTest;

/// What was made with a protection of its own, and what it says.
std::vector<std::pair<std::wstring, std::wstring>> guarded;

void note(const wchar_t* name, SECURITY_ATTRIBUTES* security)
{
    if (security == nullptr) {
        return;
    }
    wchar_t* text = nullptr;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        security->lpSecurityDescriptor, SDDL_REVISION_1,
        OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &text, nullptr));
    guarded.emplace_back(name, text);
    LocalFree(text);
}

BOOL WINAPI notedFolder(const wchar_t* name, SECURITY_ATTRIBUTES* security)
{
    note(name, security);
    return CreateDirectoryW(name, nullptr);
}

HANDLE WINAPI notedFile(const wchar_t* name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                        DWORD disposition, DWORD flags, HANDLE pattern)
{
    note(name, security);
    return CreateFileW(name, access, share, nullptr, disposition, flags, pattern);
}

/// What the platform says of the protection of a folder whose path ends with a text.
std::wstring foldersEnd;
const wchar_t* foldersProtection = nullptr;

DWORD WINAPI strangeProtection(HANDLE file, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID* owner,
                               PSID* group, PACL* list, PACL* audit, PSECURITY_DESCRIPTOR* descriptor)
{
    wchar_t path[1000] = L"";
    GetFinalPathNameByHandleW(file, path, 1000, 0);
    if (!std::wstring_view(path).ends_with(foldersEnd)) {
        return GetSecurityInfo(file, type, parts, owner, group, list, audit, descriptor);
    }
    ConvertStringSecurityDescriptorToSecurityDescriptorW(foldersProtection, SDDL_REVISION_1, descriptor,
                                                         nullptr);
    BOOL isDefault = FALSE;
    BOOL isThere = FALSE;
    GetSecurityDescriptorOwner(*descriptor, owner, &isDefault);
    GetSecurityDescriptorDacl(*descriptor, &isThere, list, &isDefault);
    return ERROR_SUCCESS;
}

/// Says of what stands under names with an ending that it is a link.
std::wstring linksEnd;

BOOL WINAPI linkInformation(HANDLE file, FILE_INFO_BY_HANDLE_CLASS what, void* found, DWORD size)
{
    if (what == FileAttributeTagInfo) {
        static_cast<FILE_ATTRIBUTE_TAG_INFO*>(found)->ReparseTag = IO_REPARSE_TAG_SYMLINK;
        return TRUE;
    }
    const BOOL done = GetFileInformationByHandleEx(file, what, found, size);
    wchar_t path[1000] = L"";
    GetFinalPathNameByHandleW(file, path, 1000, 0);
    if (what == FileBasicInfo && std::wstring_view(path).ends_with(linksEnd)) {
        static_cast<FILE_BASIC_INFO*>(found)->FileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    }
    return done;
}

/// The folder that the store chooses by itself, and the one above; away before and after. There is one for the whole
/// system, and these tests go side by side in several processes: each has it alone.
class CommonFolderTest : public StoreTest {
protected:
    void SetUp() override
    {
        ASSERT_NE(m_turn.get(), nullptr);
        // An abandoned one is as good: what a process left that ended is removed below.
        const DWORD got = WaitForSingleObject(m_turn.get(), 60'000);
        ASSERT_TRUE(got == WAIT_OBJECT_0 || got == WAIT_ABANDONED) << got;
        StoreTest::SetUp();
        wchar_t common[MAX_PATH];
        GetEnvironmentVariableW(L"ProgramData", common, MAX_PATH);
        m_above = std::filesystem::path(common) / L"Vantrel";
        std::filesystem::remove_all(m_above);
        SetEnvironmentVariableW(L"LORNIX_DATA", nullptr);
        ASSERT_EQ(lornixSetDataFolder(nullptr), 1);
        guarded.clear();
    }
    void TearDown() override
    {
        std::error_code problem; // and not an exception: the next test waits for the turn
        std::filesystem::remove_all(m_above, problem);
        EXPECT_FALSE(problem) << problem.message();
        StoreTest::TearDown();
        ReleaseMutex(m_turn.get());
    }
    std::filesystem::path above() const { return m_above; }
    std::filesystem::path folder() const { return m_above / L"lornix"; }

private:
    const Owned<HANDLE, CloseHandle> m_turn{
        CreateMutexW(nullptr, FALSE, L"corvane tests: the common folder")};
    std::filesystem::path m_above;
};

TEST_F(DataFolderTest, IsMadeWhenMissing)
{
    const auto folder = root() / "some" / "where" / "else";
    EXPECT_EQ(lornixSetDataFolder((folder.wstring() + L"\\").c_str()), 1);
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(lornixDataFolder(), folder.wstring());
    store({L"D:\\A"}, {{L"D:\\A"}});
    EXPECT_EQ(namesIn(folder), (std::vector<std::wstring>{L"lornix.lock", L"rules.txt"}));
}

TEST_F(DataFolderTest, MayHaveALongName)
{
    std::wstring folder = root().wstring();
    while (folder.size() < 600) {
        folder += L"\\" + std::wstring(50, L'x');
    }
    EXPECT_EQ(lornixSetDataFolder(folder.c_str()), 1);
    store({L"D:\\A"}, {{L"D:\\A"}});
    EXPECT_EQ(stored(L"D:\\A").size(), 1u);
    writeBytes(L"\\\\?\\" + folder + L"\\rules.txt", "foreign");
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A", 9}}).get()), 1)
        << testing::PrintToString(lornixLastError());
    EXPECT_TRUE(std::filesystem::exists(L"\\\\?\\" + folder + L"\\set-aside\\rules.1.txt"));
}

TEST_F(DataFolderTest, ThatCannotBeUsedLeavesTheFormerOne)
{
    store({L"D:\\A"}, {{L"D:\\A"}});
    writeBytes(root() / "file", "no folder");
    for (const std::wstring& folder :
         {(root() / "file").wstring(), (root() / "file" / "below").wstring(), std::wstring(L"relative"),
          std::wstring(L"\\rooted"), std::wstring(L"C:relative"), std::wstring(L""),
          std::wstring(L"Q:\\no such drive"), std::wstring(L"C:\\a?b")})
    {
        EXPECT_EQ(lornixSetDataFolder(folder.c_str()), 0) << testing::PrintToString(folder);
        EXPECT_TRUE(reported(L"\"" + folder + L"\"")) << testing::PrintToString(folder);
        EXPECT_EQ(lornixDataFolder(), data().wstring());
    }
    EXPECT_EQ(stored(L"D:\\A").size(), 1u);
}

TEST_F(DataFolderTest, ThatWentAwayHasNoRulesAndComesBackWithTheNext)
{
    store({L"D:\\A"}, {{L"D:\\A"}});
    std::filesystem::remove_all(data());
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(lornixKnownFolders(), nullptr);
    store({L"D:\\A"}, {{L"D:\\A", 3}});
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 3}}));
}

TEST_F(DataFolderTest, ComesFromTheEnvironmentAndElseFromTheSystem)
{
    const auto folder = root() / "from environment";
    SetEnvironmentVariableW(L"LORNIX_DATA", folder.c_str());
    EXPECT_EQ(lornixSetDataFolder(nullptr), 1);
    EXPECT_EQ(lornixDataFolder(), folder.wstring());
    EXPECT_FALSE(std::filesystem::exists(folder)) << "made when something is stored";
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_STREQ(lornixLastError(), L"");
    store({L"D:\\A"}, {{L"D:\\A"}});
    EXPECT_TRUE(std::filesystem::exists(folder / "rules.txt"));

    SetEnvironmentVariableW(L"LORNIX_DATA", L"near\\");
    EXPECT_EQ(lornixSetDataFolder(nullptr), 1);
    EXPECT_EQ(lornixDataFolder(), (std::filesystem::current_path() / "near").wstring());

    SetEnvironmentVariableW(L"LORNIX_DATA", nullptr);
    EXPECT_EQ(lornixSetDataFolder(nullptr), 1);
    wchar_t common[MAX_PATH];
    GetEnvironmentVariableW(L"ProgramData", common, MAX_PATH);
    EXPECT_EQ(lornixDataFolder(), std::wstring(common) + L"\\Vantrel\\lornix");
}

TEST_F(CommonFolderTest, CanBeChangedByAdministratorsAlone)
{
    const ImportPatch made(storeModule(), "CreateDirectoryW", &notedFolder);
    ASSERT_EQ(made.count(), 1);
    store({L"D:\\A"}, {{L"D:\\A"}});
    EXPECT_EQ(stored(L"D:\\A").size(), 1u);
    ASSERT_EQ(guarded.size(), 2u);
    EXPECT_EQ(guarded[0].first, L"\\\\?\\" + above().wstring());
    EXPECT_EQ(guarded[1].first, L"\\\\?\\" + folder().wstring());
    for (const auto& [name, protection] : guarded) {
        EXPECT_EQ(protection, L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)");
    }
}

TEST_F(CommonFolderTest, LockPasswordsAndWhatWasSetAsideAreForAdministratorsAlone)
{
    std::filesystem::create_directories(folder());
    writeBytes(folder() / L"rules.txt", "damaged");
    const ImportPatch made(storeModule(), "CreateDirectoryW", &notedFolder);
    const ImportPatch opened(storeModule(), "CreateFileW", &notedFile);
    ASSERT_EQ(made.count() + opened.count(), 2);
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A"}}).get()), 1);
    ASSERT_NE(loadNotifications(), 0);
    addToNotifications(_wcsdup(L"script"));
    storeNotifications();
    freeNotifications();
    std::set<std::wstring> names;
    for (const auto& [name, protection] : guarded) {
        const std::wstring last = std::filesystem::path(name).filename().wstring();
        if (last != L"Vantrel" && last != L"lornix") {
            EXPECT_EQ(protection, L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)") << testing::PrintToString(name);
            names.insert(last);
        }
    }
    EXPECT_EQ(names, (std::set<std::wstring>{L"lornix.lock", L"set-aside", L"rules.1.txt",
                                             L"notifications.txt.lornix-new"}));
}

TEST_F(DataFolderTest, ThatAHostNamesHasTheProtectionThatTheHostGave)
{
    guarded.clear();
    writeBytes(rulesFile(), "damaged");
    const ImportPatch made(storeModule(), "CreateDirectoryW", &notedFolder);
    const ImportPatch opened(storeModule(), "CreateFileW", &notedFile);
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A"}}).get()), 1);
    EXPECT_TRUE(guarded.empty());
}

TEST_F(CommonFolderTest, IsReallyMadeAndUsed)
{
    store({L"D:\\A"}, {{L"D:\\A"}});
    EXPECT_EQ(namesIn(folder()), (std::vector<std::wstring>{L"lornix.lock", L"rules.txt"}));
    store({L"D:\\A"}, {{L"D:\\A", 3}});
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 3}}));
}

TEST_F(CommonFolderTest, ThatSomebodyElseCanChangeIsNotUsed)
{
    store({L"D:\\A"}, {{L"D:\\A", 7}});
    const std::string before = bytesOf(folder() / L"rules.txt");
    const ImportPatch strange(storeModule(), "GetSecurityInfo", &strangeProtection);
    ASSERT_EQ(strange.count(), 1);
    for (const wchar_t* level : {L"\\Vantrel", L"\\Vantrel\\lornix"}) {
        foldersEnd = level;
        for (const wchar_t* protection :
             {L"O:S-1-5-21-1-2-3-1001D:P(A;OICI;FA;;;BA)",                    // the owner
              L"O:BAD:P(A;OICI;FA;;;BA)(A;;0x2;;;BU)",                        // may make files
              L"O:BAD:P(A;OICI;FA;;;BA)(A;;0x4;;;BU)",                        // or folders
              L"O:BAD:P(A;OICI;FA;;;BA)(A;;0x40;;;WD)",                       // may delete what is in it
              L"O:BAD:P(A;OICI;FA;;;BA)(A;;SD;;;AU)",                         // or itself
              L"O:BAD:P(A;OICI;FA;;;BA)(A;;WD;;;BU)", L"O:BAD:P(A;;WO;;;BU)", // may give himself the rights
              L"O:BAD:P(A;OICIIO;GW;;;BU)",                                   // may change what is made there
              L"O:BA"})
        {
            foldersProtection = protection;
            EXPECT_TRUE(stored(L"D:\\A").empty()) << testing::PrintToString(protection);
            EXPECT_TRUE(reported(L"is not used")) << testing::PrintToString(protection);
            EXPECT_EQ(lornixKnownFolders(), nullptr);
            EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A", 9}}).get()), 0);
            EXPECT_TRUE(reported(L"is not used"));
            EXPECT_STREQ(lornixDataFolder(), L"");
            EXPECT_EQ(loadExcludes(), 0);
        }
        for (const wchar_t* protection :
             {L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;FRFX;;;BU)",
              L"O:SYD:(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICIIO;FA;;;CO)(A;OICI;0x1200a9;;;WD)(D;;FA;;;BG)"})
        {
            foldersProtection = protection;
            EXPECT_EQ(stored(L"D:\\A").size(), 1u) << testing::PrintToString(protection);
            EXPECT_EQ(lornixDataFolder(), folder().wstring());
        }
    }
    EXPECT_EQ(bytesOf(folder() / L"rules.txt"), before);
}

TEST_F(CommonFolderTest, ThatWasMissingIsLookedAtWhenItIsThere)
{
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_STREQ(lornixLastError(), L"");
    std::filesystem::create_directories(folder());
    writeBytes(folder() / L"rules.txt", "lornix rules 1\n5 4 3 anyone D:\\A\nchecksum -\nend\n");
    foldersEnd = L"\\lornix";
    foldersProtection = L"O:S-1-5-21-1-2-3-1001D:P(A;OICI;FA;;;S-1-5-21-1-2-3-1001)";
    const ImportPatch strange(storeModule(), "GetSecurityInfo", &strangeProtection);
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_TRUE(reported(L"is not used"));
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A", 9}}).get()), 0);
}

int looks = 0;

DWORD WINAPI countedProtection(HANDLE file, SE_OBJECT_TYPE type, SECURITY_INFORMATION parts, PSID* owner,
                               PSID* group, PACL* list, PACL* audit, PSECURITY_DESCRIPTOR* descriptor)
{
    ++looks;
    return GetSecurityInfo(file, type, parts, owner, group, list, audit, descriptor);
}

TEST_F(CommonFolderTest, IsNotLookedAtForEachName)
{
    store({L"D:\\A"}, {{L"D:\\A"}});
    writeBytes(folder() / L"accounts.txt", "lornix accounts 1\nuser S-1-5-21-1-2-3-1 alice\nend\n");
    const ImportPatch counted(storeModule(), "GetSecurityInfo", &countedProtection);
    ASSERT_EQ(counted.count(), 1);
    looks = 0;
    const Block<void> alice = sidOf(L"S-1-5-21-1-2-3-1");
    for (int i = 0; i < 100; ++i) {
        wchar_t name[100] = L"";
        EXPECT_STREQ(getAccountBySidW(alice.get(), name, 100), L"alice");
    }
    EXPECT_LE(looks, 2) << "both of its levels, once";
    looks = 0;
    freeSidList(enumerateUsers(nullptr, nullptr));
    EXPECT_EQ(looks, 2) << "a list is read anew where somebody changed it";
}

std::filesystem::path madeMeanwhile;

BOOL WINAPI makeMeanwhile(const wchar_t* name, GET_FILEEX_INFO_LEVELS level, void* found)
{
    std::filesystem::create_directories(madeMeanwhile);
    writeBytes(madeMeanwhile / L"accounts.txt", "lornix accounts 1\nuser S-1-5-21-1-2-3-1 mallory\nend\n");
    return GetFileAttributesExW(name, level, found);
}

TEST_F(CommonFolderTest, AccountsInOneThatWasMissingAreNotReadUnseen)
{
    madeMeanwhile = folder();
    foldersEnd = L"\\lornix";
    foldersProtection = L"O:S-1-5-21-1-2-3-1001D:P(A;OICI;FA;;;S-1-5-21-1-2-3-1001)";
    const ImportPatch strange(storeModule(), "GetSecurityInfo", &strangeProtection);
    const ImportPatch made(storeModule(), "GetFileAttributesExW", &makeMeanwhile);
    ASSERT_EQ(made.count(), 1);
    EXPECT_EQ(Block<void>(getSidByNameW(L"mallory")), nullptr);
    freeSidList(enumerateUsers(nullptr, nullptr));
    EXPECT_EQ(Block<void>(getSidByNameW(L"mallory")), nullptr);
}

TEST_F(CommonFolderTest, ThatIsALinkIsNotUsed)
{
    store({L"D:\\A"}, {{L"D:\\A", 7}});
    const ImportPatch link(storeModule(), "GetFileInformationByHandleEx", &linkInformation);
    ASSERT_EQ(link.count(), 1);
    for (const wchar_t* level : {L"\\Vantrel", L"\\Vantrel\\lornix"}) {
        linksEnd = level;
        EXPECT_TRUE(stored(L"D:\\A").empty());
        EXPECT_TRUE(reported(L"is not used"));
    }
}

TEST_F(DataFolderTest, LinksInThePlaceOfItsFilesAreNotFollowed)
{
    store({L"D:\\A"}, {{L"D:\\A", 7}});
    const ImportPatch link(storeModule(), "GetFileInformationByHandleEx", &linkInformation);
    linksEnd = L"\\rules.txt";
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_TRUE(reported(L"(error 681)"));
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A", 9}}).get()), 0);
    linksEnd = L"\\lornix.lock";
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A", 9}}).get()), 0);
    EXPECT_TRUE(reported(L"(error 681)"));
    linksEnd = L"?";
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 7}}));
}

TEST_F(DataFolderTest, WhatStandsUnderTheNameOfANewFileIsNotWrittenTo)
{
    store({L"D:\\A"}, {{L"D:\\A", 7}});
    writeBytes(root() / "precious", "precious");
    // Another name of the same file, as whoever may make files there could have given it. It comes late: what was left
    // behind is cleared away first.
    static std::filesystem::path target;
    static std::filesystem::path name;
    target = root() / "precious";
    name = rulesFile().wstring() + L".lornix-new";
    const ImportPatch late(storeModule(), "DeleteFileW",
                           static_cast<BOOL(WINAPI*)(const wchar_t*)>([](const wchar_t* file) -> BOOL {
                               DeleteFileW(file);
                               return CreateHardLinkW(name.c_str(), target.c_str(), nullptr);
                           }));
    ASSERT_EQ(late.count(), 1);
    lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A", 9}}).get());
    EXPECT_EQ(bytesOf(root() / "precious"), "precious");
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 7}}));
}

TEST_F(DataFolderTest, AFileMayBeAsLargeAs64MiB)
{
    std::string text = "lornix rules 1\n5 4 3 anyone D:\\A\n";
    const std::string end = "\nchecksum -\nend\n";
    constexpr std::size_t kLargest = 64 << 20;
    const std::string large = text + '#' + std::string(kLargest - text.size() - end.size() - 1, 'x') + end;
    writeBytes(rulesFile(), large);
    EXPECT_EQ(stored(L"D:\\A").size(), 1u);
    EXPECT_STREQ(lornixLastError(), L"");
    writeBytes(rulesFile(), large + '\n');
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_TRUE(reported(L"(error 223)"));
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A", 9}}).get()), 0);
    EXPECT_EQ(std::filesystem::file_size(rulesFile()), kLargest + 1);
}

} // namespace
