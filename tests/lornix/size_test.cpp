// Sizes of real folder trees.
#include "tree_test.h"

#include <algorithm>

namespace {

using namespace store_test;

using SizeTest = TreeTest;

TEST_F(SizeTest, AllFilesOfAllFolders)
{
    EXPECT_EQ(getRealSize(m_top.c_str()), 0);
    makeFile(in(L"a"), 1000);
    makeFile(in(L"empty"), 0);
    makeFolder(in(L"x"));
    makeFile(in(L"x\\b"), 20);
    makeFolder(in(L"x\\y"));
    makeFile(in(L"x\\y\\c.txt"), 3);
    makeFolder(in(L"z"));
    EXPECT_EQ(getRealSize(m_top.c_str()), 1023);
    EXPECT_STREQ(lornixLastError(), L"");
}

TEST_F(SizeTest, HiddenReadOnlyAndSystemFilesCount)
{
    makeFile(in(L"hidden"), 1);
    makeFile(in(L"read-only"), 20);
    SetFileAttributesW(in(L"hidden").c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    SetFileAttributesW(in(L"read-only").c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(getRealSize(m_top.c_str()), 21);
    SetFileAttributesW(in(L"read-only").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(SizeTest, ThePathMayBeSpelledInAnyWay)
{
    makeFolder(in(L"x"));
    makeFile(in(L"x\\a"), 5);
    std::wstring slashes = in(L"x");
    std::replace(slashes.begin(), slashes.end(), L'\\', L'/');
    for (const std::wstring& path : {in(L"x"), in(L"X"), slashes, slashes + L"/", in(L"x\\\\"),
                                     in(L"x\\.\\..\\x"), L"\\\\?\\" + in(L"x")})
    {
        EXPECT_EQ(getRealSize(path.c_str()), 5) << testing::PrintToString(path);
    }
}

TEST_F(SizeTest, WholeDrive)
{
    EXPECT_GT(getRealSize(L"C:\\windows\\system32"), 0);
    EXPECT_STREQ(lornixLastError(), L"");
    // The root itself is a folder like any other, also without its slash.
    const std::int64_t root = getRealSize(L"C:\\");
    EXPECT_GT(root, getRealSize(L"C:/windows"));
}

TEST_F(SizeTest, FoldersThatCannotBeReadAre0AndReported)
{
    makeFile(in(L"file"), 5);
    for (const std::wstring& path : {in(L"missing"), in(L"file"), std::wstring(L"Q:\\x"), std::wstring(L"?"),
                                     std::wstring(L"\\\\?\\"), std::wstring(40000, L'x')})
    {
        EXPECT_EQ(getRealSize(path.c_str()), 0);
        EXPECT_TRUE(reported(L"cannot be measured")) << testing::PrintToString(path.substr(0, 50));
    }
    EXPECT_EQ(getRealSize(nullptr), 0);
    EXPECT_TRUE(reported(L"No folder was given"));
    EXPECT_EQ(getRealSize(L""), 0);
    EXPECT_TRUE(reported(L"No folder was given"));
}

TEST_F(SizeTest, LargeFilesCountWhole)
{
    // Holes, so that they need no room.
    makeFile(in(L"a"), 5LL << 32);
    makeFile(in(L"b"), (3LL << 32) + 7);
    EXPECT_EQ(getRealSize(m_top.c_str()), (8LL << 32) + 7);
}

TEST_F(SizeTest, ManyFilesAndFolders)
{
    for (int i = 0; i < 40; ++i) {
        const std::wstring folder = in(std::to_wstring(i));
        makeFolder(folder);
        for (int j = 0; j < 40; ++j) {
            makeFile(folder + L'\\' + std::to_wstring(j), i);
        }
    }
    EXPECT_EQ(getRealSize(m_top.c_str()), 40 * 40 * 39 / 2);
}

TEST_F(SizeTest, DeepTreesAndLongPaths)
{
    // Nearly as long as the system below takes a path: 4096 bytes here.
    const std::wstring folder = makeDeepFolder(m_top, std::wstring(24, L'd'), 120);
    makeFile(folder + L"\\a", 77);
    makeFile(in(L"b"), 5);
    EXPECT_GT(folder.size(), 3000u);
    EXPECT_EQ(getRealSize(m_top.c_str()), 82);
    EXPECT_EQ(getRealSize(folder.c_str()), 77);
    const std::wstring wide = in(std::wstring(200, L'x'));
    makeFolder(wide);
    makeFile(wide + L"\\" + std::wstring(200, L'y'), 3);
    EXPECT_EQ(getRealSize(wide.c_str()), 3);
    EXPECT_EQ(getRealSize(m_top.c_str()), 85);
}

TEST_F(SizeTest, OddNames)
{
    for (const std::wstring& name :
         {std::wstring(L"B\u00FCro \u4E2D\u6587"), std::wstring(L"a "), std::wstring(L"b."),
          std::wstring(L"..."), std::wstring(L"\xD83D\xDCBE")})
    {
        makeFolder(in(name));
        makeFile(in(name) + L"\\" + name, 2);
    }
    EXPECT_EQ(getRealSize(m_top.c_str()), 10);
}

} // namespace
