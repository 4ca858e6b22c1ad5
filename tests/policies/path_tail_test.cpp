#include "policies/path_tail.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(PathTail, FollowsTheLastBackslash)
{
    EXPECT_STREQ(pathTail(L"C:\\Tools\\bk.exe"), L"bk.exe");
    EXPECT_STREQ(pathTail(L"\\bk.exe"), L"bk.exe");
    EXPECT_STREQ(pathTail(L"C:\\Tools\\"), L"");
    EXPECT_STREQ(pathTail(L"\\\\server\\share\\a b.exe"), L"a b.exe");
}

TEST(PathTail, IsTheWholeTextWithoutABackslash)
{
    EXPECT_STREQ(pathTail(L"bk.exe"), L"bk.exe");
    EXPECT_STREQ(pathTail(L""), L"");
    EXPECT_STREQ(pathTail(L"C:/Tools/bk.exe"), L"C:/Tools/bk.exe"); // another kind of slash is none
}

TEST(PathTail, LiesInsideThePath)
{
    const std::wstring path = L"a\\b\\c";
    EXPECT_EQ(pathTail(path.c_str()), path.c_str() + 4);
}

} // namespace
