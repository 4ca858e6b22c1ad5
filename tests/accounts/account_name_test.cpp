#include "accounts/account_name.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(AccountName, IsCutAtItsFirstBackslash)
{
    std::wstring text = L"NORTH\\ann\\x";
    const wchar_t* domain = nullptr;
    EXPECT_STREQ(splitAccountName(text.data(), domain), L"ann\\x");
    EXPECT_STREQ(domain, L"NORTH");
}

TEST(AccountName, WithoutBackslashHasNoDomain)
{
    std::wstring text = L"Everyone";
    const wchar_t* domain = L"left over";
    EXPECT_STREQ(splitAccountName(text.data(), domain), L"Everyone");
    EXPECT_EQ(domain, nullptr);
}

TEST(AccountName, MayHaveEmptyParts)
{
    std::wstring text = L"\\";
    const wchar_t* domain = nullptr;
    EXPECT_STREQ(splitAccountName(text.data(), domain), L"");
    EXPECT_STREQ(domain, L"");
}

TEST(AccountName, AfterBackslash)
{
    EXPECT_STREQ(afterBackslash(L"NORTH\\ann"), L"ann");
    EXPECT_STREQ(afterBackslash(L"a\\b\\c"), L"b\\c");
    EXPECT_STREQ(afterBackslash(L"ann"), L"");
    EXPECT_STREQ(afterBackslash(L""), L"");
}

TEST(AccountName, DomainOfADirectoryPath)
{
    std::wstring_view domain;
    ASSERT_TRUE(directoryDomain(L"WinNT://NORTH", domain));
    EXPECT_EQ(domain, L"NORTH");
    ASSERT_TRUE(directoryDomain(L"LDAP://north.example/ou=x", domain));
    EXPECT_EQ(domain, L"north.example");
    ASSERT_TRUE(directoryDomain(L"WinNT://", domain));
    EXPECT_EQ(domain, L"");
    ASSERT_TRUE(directoryDomain(L"a://b://c", domain));
    EXPECT_EQ(domain, L"b:");
}

TEST(AccountName, PathWithoutProviderNamesNoDomain)
{
    std::wstring_view domain = L"untouched";
    EXPECT_FALSE(directoryDomain(L"SERVER", domain));
    EXPECT_FALSE(directoryDomain(L"", domain));
    EXPECT_FALSE(directoryDomain(L"WinNT:/NORTH", domain));
    EXPECT_EQ(domain, L"untouched");
}

TEST(AccountName, DirectoryPathsAreKnownByTheirProvider)
{
    EXPECT_TRUE(isDirectoryPath(L"WinNT://NORTH"));
    EXPECT_TRUE(isDirectoryPath(L"LDAP://NORTH"));
    EXPECT_TRUE(isDirectoryPath(L"x LDAP:"));
    EXPECT_FALSE(isDirectoryPath(L"winnt://NORTH"));
    EXPECT_FALSE(isDirectoryPath(L"ldap://NORTH"));
    EXPECT_FALSE(isDirectoryPath(L"SERVER"));
    EXPECT_FALSE(isDirectoryPath(L"WinNT"));
    EXPECT_FALSE(isDirectoryPath(L""));
}

} // namespace
