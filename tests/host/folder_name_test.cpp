#include "host/folder_name.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using host::folderKey;
using host::isFullPath;
using host::tidyFolder;

TEST(FolderName, IsTidied)
{
    EXPECT_EQ(tidyFolder(L"  \"C:/Data/Users/\"  "), L"C:\\Data\\Users");
    EXPECT_EQ(tidyFolder(L"C:\\Data\\\\\\"), L"C:\\Data");
    EXPECT_EQ(tidyFolder(L"\\\\server\\share\\"), L"\\\\server\\share");
    EXPECT_EQ(tidyFolder(L"C:\\My Data"), L"C:\\My Data");
}

TEST(FolderName, KeepsTheSlashOfADrivesRoot)
{
    EXPECT_EQ(tidyFolder(L"c:/"), L"c:\\");
    EXPECT_EQ(tidyFolder(L"c:\\\\"), L"c:\\");
}

TEST(FolderName, OfNothingIsNothing)
{
    EXPECT_EQ(tidyFolder(L""), L"");
    EXPECT_EQ(tidyFolder(L" \"\" "), L"");
}

TEST(FolderName, KeyDisregardsCaseAndSlashes)
{
    EXPECT_EQ(folderKey(L"C:\\Data\\\u00C4rger"), folderKey(L"c:/DATA/\u00E4RGER/"));
    EXPECT_NE(folderKey(L"C:\\Data"), folderKey(L"C:\\Data2"));
}

TEST(FolderName, IsFullFromADriveOrAServer)
{
    EXPECT_TRUE(isFullPath(L"C:\\"));
    EXPECT_TRUE(isFullPath(L"z:\\data"));
    EXPECT_TRUE(isFullPath(L"\\\\server\\share"));
    EXPECT_FALSE(isFullPath(L""));
    EXPECT_FALSE(isFullPath(L"C:"));
    EXPECT_FALSE(isFullPath(L"C:data"));
    EXPECT_FALSE(isFullPath(L"\\data"));
    EXPECT_FALSE(isFullPath(L"data\\users"));
    EXPECT_FALSE(isFullPath(L"\\\\\\data"));
}

TEST(LongForm, IsTakenAtAnyLength)
{
    EXPECT_EQ(host::longForm(L"C:\\Data"), L"\\\\?\\C:\\Data");
    EXPECT_EQ(host::longForm(L"C:\\"), L"\\\\?\\C:\\");
    EXPECT_EQ(host::longForm(L"\\\\server\\share\\a"), L"\\\\?\\UNC\\server\\share\\a");
}

TEST(LongForm, LeavesWhatHasItAlreadyAndWhatIsNoFullPath)
{
    for (const wchar_t* name :
         {L"\\\\?\\C:\\Data", L"\\\\?\\UNC\\server\\share", L"\\\\.\\C:", L"Data", L"C:Data", L""})
    {
        EXPECT_EQ(host::longForm(name), name);
    }
}

TEST(FullPath, HasNoDots)
{
    EXPECT_EQ(host::fullPath(L"C:\\Data\\..\\Other\\."), L"C:\\Other");
    const std::wstring part = L"\\" + std::wstring(200, L'd');
    EXPECT_EQ(host::fullPath(L"C:" + part + part + L"\\.."), L"C:" + part);
}

TEST(WhyNotAFolder, TakesAFolderOfAnyLength)
{
    wchar_t temporary[MAX_PATH + 1] = L"";
    ASSERT_NE(GetTempPathW(MAX_PATH, temporary), 0U);
    const std::wstring root = temporary + (L"corvane-host-" + std::to_wstring(GetCurrentProcessId()));
    const std::wstring part = L"\\" + std::wstring(100, L'd');
    const std::wstring devices = L"\\\\?\\";
    const std::vector<std::wstring> made{root, root + part, root + part + part, root + part + part + part};
    for (const std::wstring& folder : made) {
        ASSERT_TRUE(CreateDirectoryW((devices + folder).c_str(), nullptr)) << GetLastError();
    }
    ASSERT_GT(made.back().size(), static_cast<size_t>(MAX_PATH));
    EXPECT_EQ(host::whyNotAFolder(made.back()), L"");
    EXPECT_EQ(host::whyNotAFolder(made.back() + L"\\.."), L"");
    EXPECT_NE(host::whyNotAFolder(made.back() + L"\\none"), L"");
    for (auto folder = made.rbegin(); folder != made.rend(); ++folder) {
        EXPECT_TRUE(RemoveDirectoryW((devices + *folder).c_str()));
    }
}
