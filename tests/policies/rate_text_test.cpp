#include "policies/rate_text.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <limits>
#include <string>

namespace {

std::wstring rateText(std::int32_t seconds)
{
    wchar_t buffer[kRateTextCapacity];
    std::wmemset(buffer, L'#', kRateTextCapacity);
    formatRate(buffer, seconds);
    return buffer;
}

TEST(FormatRate, ChoicesOfTheDialogReadAsTheyAreChosen)
{
    EXPECT_EQ(rateText(-1), L"no limit");
    EXPECT_EQ(rateText(1), L"1sec");
    EXPECT_EQ(rateText(60), L"1min");
    EXPECT_EQ(rateText(300), L"5min");
    EXPECT_EQ(rateText(3600), L"1hr");
    EXPECT_EQ(rateText(86400), L"1day(s)");
    EXPECT_EQ(rateText(604800), L"1week(s)");
}

TEST(FormatRate, NothingStoredIsADay)
{
    EXPECT_EQ(rateText(0), L"1day(s)");
}

TEST(FormatRate, WhatIsLeftOverIsDropped)
{
    EXPECT_EQ(rateText(90), L"1min");
    EXPECT_EQ(rateText(7200), L"2hr");
    EXPECT_EQ(rateText(2 * 86400 - 1), L"1day(s)");
}

TEST(FormatRate, EachUnitStartsAtItsOwnLength)
{
    EXPECT_EQ(rateText(2), L"2sec");
    EXPECT_EQ(rateText(59), L"59sec");
    EXPECT_EQ(rateText(61), L"1min");
    EXPECT_EQ(rateText(3599), L"59min");
    EXPECT_EQ(rateText(86399), L"23hr");
    EXPECT_EQ(rateText(604799), L"6day(s)");
    EXPECT_EQ(rateText(std::numeric_limits<std::int32_t>::max()), L"3550week(s)");
}

TEST(FormatRate, NegativeRatesAreNoLimitAndNoFault)
{
    EXPECT_EQ(rateText(-2), L"no limit");
    EXPECT_EQ(rateText(std::numeric_limits<std::int32_t>::min()), L"no limit");
}

} // namespace
