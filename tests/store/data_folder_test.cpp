// The data folder: chosen, from the environment, made, gone.
#include "store_test.h"

namespace {

using namespace store_test;

using DataFolderTest = StoreTest;

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

} // namespace
