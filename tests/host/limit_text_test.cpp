#include "host/limit_text.h"

#include <gtest/gtest.h>

using host::checkCellLimit;
using host::percentText;
using host::sizeText;

namespace {

constexpr int64_t kMi = 1LL << 20;
constexpr int64_t kGi = 1LL << 30;

void expectTaken(const wchar_t* typed, const wchar_t* handedOn)
{
    EXPECT_EQ(checkCellLimit(typed).text, handedOn)
        << "typed: " << testing::PrintToString(std::wstring(typed));
    EXPECT_EQ(checkCellLimit(typed).problem, L"");
}

void expectRefused(const wchar_t* typed, const wchar_t* because)
{
    const host::CellLimit limit = checkCellLimit(typed);
    EXPECT_EQ(limit.text, L"");
    EXPECT_EQ(limit.problem.substr(0, limit.problem.find(L'\n')), because);
}

} // namespace

TEST(SizeText, ChangesItsUnitAboveAMillion)
{
    EXPECT_EQ(sizeText(0), L"0 ");
    EXPECT_EQ(sizeText(-1), L"-1 ");
    EXPECT_EQ(sizeText(kMi), L"1048576 ");
    EXPECT_EQ(sizeText(kMi + 1), L"1024K");
    EXPECT_EQ(sizeText(100 * kMi), L"102400K");
    EXPECT_EQ(sizeText(5 * kGi), L"5120M");
    EXPECT_EQ(sizeText(2048 * kGi), L"2048G");
    EXPECT_EQ(sizeText(INT64_MAX), L"8191");
}

TEST(PercentText, HasTwoDigitsAndFitsItsCell)
{
    EXPECT_EQ(percentText(0, 1024), L"00%");
    EXPECT_EQ(percentText(52, 1024), L"05%");
    EXPECT_EQ(percentText(1024, 1024), L"100%");
    EXPECT_EQ(percentText(-52, 1024), L"-05%");
    EXPECT_EQ(percentText(99999, 1), L"99999");
}

TEST(CellLimit, IsANumberWithAUnit)
{
    expectTaken(L"500M", L"500M");
    expectTaken(L"500m", L"500m");
    expectTaken(L"1K", L"1K");
    expectTaken(L"1024", L"1024");
    expectTaken(L"1G", L"1G");
    expectTaken(L" 64M ", L"64M");
}

TEST(CellLimit, EndsWhere32BitsEnd)
{
    expectTaken(L"2047M", L"2047M");
    expectTaken(L"2147483647", L"2147483647");
    expectRefused(L"2147483648", L"2147483648 is too large to be typed into the list.");
    expectRefused(L"2048M", L"2048M is too large to be typed into the list.");
    expectRefused(L"3G", L"3G is too large to be typed into the list.");
    expectRefused(L"4G", L"4G is too large to be typed into the list.");
    expectRefused(L"99999999999999999999999999K",
                  L"99999999999999999999999999K is too large to be typed into the list.");
}

TEST(CellLimit, IsAtLeastAKibibyte)
{
    expectRefused(L"0", L"0 is too small for a limit.");
    expectRefused(L"1023", L"1023 is too small for a limit.");
    expectRefused(L"0G", L"0G is too small for a limit.");
}

TEST(CellLimit, IsNothingElse)
{
    expectRefused(L"", L"No limit was typed.");
    expectRefused(L"  ", L"No limit was typed.");
    expectRefused(L"M", L"\"M\" is not a limit.");
    expectRefused(L"1T", L"\"1T\" is not a limit.");
    expectRefused(L"100 M", L"\"100 M\" is not a limit.");
    expectRefused(L"-5M", L"\"-5M\" is not a limit.");
    expectRefused(L"1.5G", L"\"1.5G\" is not a limit.");
    expectRefused(L"5MB", L"\"5MB\" is not a limit.");
    expectRefused(L"\u0663M", L"\"\u0663M\" is not a limit.");
}
