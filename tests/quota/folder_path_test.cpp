#include "quota/folder_path.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(FolderPath, BackslashesBecomeForwardSlashesInPlace)
{
    std::wstring path = L"\\\\server\\share/Data\\";
    useForwardSlashes(path.data());
    EXPECT_EQ(path, L"//server/share/Data/");

    std::wstring empty;
    useForwardSlashes(empty.data());
    EXPECT_EQ(empty, L"");
}

TEST(FolderPath, SameFolderWhateverTheCaseAndTheSlash)
{
    std::wstring a = L"C:\\Data\\Users";
    std::wstring b = L"c:/data/USERS";
    EXPECT_TRUE(sameFolder(a.data(), b.data()));
    EXPECT_EQ(a, L"C:/Data/Users");
    EXPECT_EQ(b, L"c:/data/USERS");
}

TEST(FolderPath, DifferentFoldersAreRewrittenToo)
{
    std::wstring a = L"C:\\Data";
    std::wstring b = L"C:\\Data\\"; // a slash at the end makes another path
    EXPECT_FALSE(sameFolder(a.data(), b.data()));
    EXPECT_EQ(a, L"C:/Data");
    EXPECT_EQ(b, L"C:/Data/");
}

TEST(FolderPath, AStringIsTheSameAsItself)
{
    std::wstring path = L"D:\\x";
    EXPECT_TRUE(sameFolder(path.data(), path.data()));
    EXPECT_EQ(path, L"D:/x");
}

} // namespace
