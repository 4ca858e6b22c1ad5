// The data folder: chosen, from the environment, made, gone.
#include "store_test.h"

#include "tests/support/import_patch.h"

#include <aclapi.h>
#include <sddl.h>

namespace {

using namespace store_test;

using DataFolderTest = StoreTest;

/// The folders that were made with a protection of their own, and what it says.
std::vector<std::pair<std::wstring, std::wstring>> guarded;

BOOL WINAPI notedFolder(const wchar_t* name, SECURITY_ATTRIBUTES* security)
{
    if (security != nullptr) {
        wchar_t* text = nullptr;
        EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
            security->lpSecurityDescriptor, SDDL_REVISION_1,
            OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &text, nullptr));
        guarded.emplace_back(name, text);
        LocalFree(text);
    }
    return CreateDirectoryW(name, nullptr);
}

DWORD WINAPI everybodysFolder(wchar_t*, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID* owner, PSID*, PACL*,
                              PACL*, PSECURITY_DESCRIPTOR* descriptor)
{
    ConvertStringSecurityDescriptorToSecurityDescriptorW(L"O:S-1-5-21-1-2-3-1001", SDDL_REVISION_1,
                                                         descriptor, nullptr);
    BOOL isDefault = FALSE;
    GetSecurityDescriptorOwner(*descriptor, owner, &isDefault);
    return ERROR_SUCCESS;
}

/// The folder that the store chooses by itself, and the one above; away before and after.
class CommonFolderTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        wchar_t common[MAX_PATH];
        GetEnvironmentVariableW(L"ProgramData", common, MAX_PATH);
        above_ = std::filesystem::path(common) / L"Vantrel";
        std::filesystem::remove_all(above_);
        SetEnvironmentVariableW(L"LORNIX_DATA", nullptr);
        ASSERT_EQ(lornixSetDataFolder(nullptr), 1);
        guarded.clear();
    }
    void TearDown() override
    {
        std::filesystem::remove_all(above_);
        StoreTest::TearDown();
    }
    std::filesystem::path above() const { return above_; }
    std::filesystem::path folder() const { return above_ / L"lornix"; }

private:
    std::filesystem::path above_;
};

TEST_F(DataFolderTest, IsMadeWhenMissing)
{
    const auto folder = root() / "some" / "where" / "else";
    EXPECT_EQ(lornixSetDataFolder((folder.wstring() + L"\\").c_str()), 1);
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(lornixDataFolder(), folder.wstring());
    store({L"D:\\A"}, {{L"D:\\A"}});
    EXPECT_EQ(namesIn(folder), (std::vector<std::wstring>{L"known-folders.txt", L"lornix.lock", L"rules"}));
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
    writeBytes(L"\\\\?\\" + folder + L"\\known-folders.txt", "foreign");
    EXPECT_EQ(lornixKnownFolders(), nullptr);
    EXPECT_TRUE(std::filesystem::exists(L"\\\\?\\" + folder + L"\\set-aside\\known-folders.1.txt"));
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
    EXPECT_TRUE(std::filesystem::exists(folder / "known-folders.txt"));

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

TEST_F(CommonFolderTest, IsReallyMadeAndUsed)
{
    store({L"D:\\A"}, {{L"D:\\A"}});
    EXPECT_EQ(namesIn(folder()), (std::vector<std::wstring>{L"known-folders.txt", L"lornix.lock", L"rules"}));
    store({L"D:\\A"}, {{L"D:\\A", 3}});
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 3}}));
}

TEST_F(CommonFolderTest, OfSomebodyElseIsNotUsed)
{
    std::filesystem::create_directories(folder());
    writeBytes(folder() / L"known-folders.txt", "lornix known-folders 1\r\nD:\\theirs\r\nend\r\n");
    {
        const ImportPatch owned(storeModule(), "GetNamedSecurityInfoW", &everybodysFolder);
        ASSERT_EQ(owned.count(), 1);
        EXPECT_EQ(lornixKnownFolders(), nullptr);
        EXPECT_TRUE(reported(L"belongs to somebody who is no administrator"));
        EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chainOf({{L"D:\\A"}}).get()), 0);
        EXPECT_TRUE(reported(L"belongs to somebody who is no administrator"));
        EXPECT_STREQ(lornixDataFolder(), L"");
    }
    EXPECT_EQ(namesIn(folder()), std::vector<std::wstring>{L"known-folders.txt"});
    EXPECT_EQ(lornixDataFolder(), folder().wstring());
}

} // namespace
