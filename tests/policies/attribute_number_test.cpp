#include "policies/attribute_number.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(AttributeNumber, NothingAndUnreadableTextAreZero)
{
    EXPECT_EQ(attributeNumber(nullptr), 0);
    EXPECT_EQ(attributeNumber(L""), 0);
    EXPECT_EQ(attributeNumber(L" "), 0);
    EXPECT_EQ(attributeNumber(L"abc"), 0);
    EXPECT_EQ(attributeNumber(L"k"), 0);
    EXPECT_EQ(attributeNumber(L"-"), 0);
    EXPECT_EQ(attributeNumber(L"- 1"), 0);
}

TEST(AttributeNumber, PlainNumbers)
{
    EXPECT_EQ(attributeNumber(L"0"), 0);
    EXPECT_EQ(attributeNumber(L"3"), 3);
    EXPECT_EQ(attributeNumber(L" +604800"), 604800);
    EXPECT_EQ(attributeNumber(L"-7"), -7);
    EXPECT_EQ(attributeNumber(L"86400 and more"), 86400);
}

TEST(AttributeNumber, UnitLettersShift)
{
    EXPECT_EQ(attributeNumber(L"5m"), 5 << 20);
    EXPECT_EQ(attributeNumber(L"5M"), 5 << 20);
    EXPECT_EQ(attributeNumber(L"3k"), 3 << 10);
    EXPECT_EQ(attributeNumber(L"1G"), 1 << 30);
    EXPECT_EQ(attributeNumber(L"300x"), 300);
    EXPECT_EQ(attributeNumber(L"300 k"), 300); // the blank is the unit
}

TEST(AttributeNumber, MinusOneIsJudgedAfterTheLetter)
{
    EXPECT_EQ(attributeNumber(L"-1"), -1);
    EXPECT_EQ(attributeNumber(L"-1x"), -1);
    EXPECT_EQ(attributeNumber(L"-1k"), -1024);
    EXPECT_EQ(attributeNumber(L"-1m"), -(1 << 20));
}

TEST(AttributeNumber, LargeValuesAreCutTo32Bits)
{
    EXPECT_EQ(attributeNumber(L"4294967297"), 1);
    EXPECT_EQ(attributeNumber(L"2g"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(attributeNumber(L"4g"), 0);
    EXPECT_EQ(attributeNumber(L"1t"), 0);
    EXPECT_EQ(attributeNumber(L"4294967295"), -1);
    EXPECT_EQ(attributeNumber(L"18446744073709551615"), -1);
}

} // namespace
