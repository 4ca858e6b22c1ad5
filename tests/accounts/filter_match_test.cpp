#include "accounts/filter_match.h"

#include <gtest/gtest.h>

TEST(PassesFilterTest, ATextThatBeginsWithTheFilterPasses)
{
    EXPECT_TRUE(passesFilter(L"alice", L"al"));
    EXPECT_TRUE(passesFilter(L"alice", L"alice"));
    EXPECT_FALSE(passesFilter(L"alice", L"li"));
    EXPECT_FALSE(passesFilter(L"al", L"alice"));
}

TEST(PassesFilterTest, CaseDoesNotCount)
{
    EXPECT_TRUE(passesFilter(L"Alice", L"aL"));
    EXPECT_TRUE(passesFilter(L"alice", L"ALICE"));
}

TEST(PassesFilterTest, AnEmptyFilterLetsEverythingPass)
{
    EXPECT_TRUE(passesFilter(L"alice", L""));
    EXPECT_TRUE(passesFilter(L"", L""));
}

TEST(PassesFilterTest, AnEmptyTextPassesNoFilter)
{
    EXPECT_FALSE(passesFilter(L"", L"a"));
}

TEST(PassesFilterTest, WhiteSpaceCounts)
{
    EXPECT_FALSE(passesFilter(L"alice", L" al"));
    EXPECT_FALSE(passesFilter(L" alice", L"al"));
}

TEST(EqualsFilterTest, TheEndsMustMeet)
{
    EXPECT_TRUE(equalsFilter(L"alice", L"alice"));
    EXPECT_FALSE(equalsFilter(L"alice", L"alic"));
    EXPECT_FALSE(equalsFilter(L"alic", L"alice"));
}

TEST(EqualsFilterTest, CaseAndWhiteSpaceDoNotCount)
{
    EXPECT_TRUE(equalsFilter(L"Domain Users", L"domainusers"));
    EXPECT_TRUE(equalsFilter(L"domainusers", L" Domain\tUsers "));
    EXPECT_TRUE(equalsFilter(L"  a  ", L" a "));
    EXPECT_FALSE(equalsFilter(L"a b", L"ac"));
}

TEST(EqualsFilterTest, WithoutAFilterOnlyAnEmptyCellIsEqual)
{
    EXPECT_TRUE(equalsFilter(L"", L""));
    EXPECT_TRUE(equalsFilter(L"  ", L""));
    EXPECT_FALSE(equalsFilter(L"a", L""));
    EXPECT_FALSE(equalsFilter(L"", L"a"));
}
