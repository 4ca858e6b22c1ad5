#include "frame/sort_key.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

int ascending(const wchar_t* first, const wchar_t* second)
{
    return compareSortKeys(sortKey(first), sortKey(second), false);
}

int descending(const wchar_t* first, const wchar_t* second)
{
    return compareSortKeys(sortKey(first), sortKey(second), true);
}

TEST(SortKey, NumbersCompareByTheirScaledDifference)
{
    EXPECT_EQ(ascending(L"7 ", L"5 "), 2);
    EXPECT_EQ(ascending(L"5 ", L"7 "), -2);
    EXPECT_EQ(descending(L"7 ", L"5 "), -2);
    EXPECT_EQ(ascending(L"1K", L"1 "), 1023);
    EXPECT_EQ(ascending(L"1024K", L"1M"), 0);
    EXPECT_EQ(ascending(L"1m", L"1K"), 1048576 - 1024);
    EXPECT_EQ(ascending(L"05%", L"100%"), -95);
    EXPECT_EQ(ascending(L"-1 ", L"0 "), -1);
}

TEST(SortKey, DifferencesAreCutTo32Bits)
{
    EXPECT_EQ(ascending(L"1G", L"0 "), 1073741824);
    EXPECT_LT(ascending(L"2G", L"0 "), 0); // 2 GiB above, and yet sorted below
    EXPECT_EQ(ascending(L"4G", L"0 "), 0);
    EXPECT_EQ(ascending(L"1T", L"0 "), 0);
    EXPECT_EQ(ascending(L"2G", L"0 "), INT32_MIN);
    EXPECT_EQ(descending(L"2G", L"0 "), INT32_MIN);
}

TEST(SortKey, TextsRunFromZToAFirst)
{
    EXPECT_GT(ascending(L"alpha", L"beta"), 0);
    EXPECT_LT(ascending(L"beta", L"alpha"), 0);
    EXPECT_LT(descending(L"alpha", L"beta"), 0);
    EXPECT_EQ(ascending(L"Beta", L"bETA"), 0);
    EXPECT_GT(ascending(L"", L"a"), 0);
    EXPECT_EQ(ascending(L"", L""), 0);
}

TEST(SortKey, CaseIsFoldedToLowerCase)
{
    // '_' stands between the upper-case and the lower-case letters.
    EXPECT_GT(ascending(L"_", L"A"), 0);
    EXPECT_GT(ascending(L"_", L"a"), 0);
}

TEST(SortKey, OneTextAmongNumbersIsComparedAsText)
{
    EXPECT_GT(ascending(L"10 ", L"abc"), 0);
    EXPECT_LT(ascending(L"abc", L"10 "), 0);
    EXPECT_LT(descending(L"10 ", L"abc"), 0);
}

TEST(SortKey, TextsThatStartWithADigitAreNumbers)
{
    EXPECT_EQ(ascending(L"3com", L"3DFX"), 0);
    EXPECT_GT(ascending(L"10.server", L"9.server"), 0);
}

TEST(SortKey, TurningTheOrderRoundSwapsTheOperands)
{
    std::mt19937_64 random(7);
    const std::wstring alphabet = L"0159abAB KMG-_";
    const auto text = [&] {
        std::wstring made(random() % 6, L'\0');
        for (wchar_t& c : made) {
            c = alphabet[random() % alphabet.size()];
        }
        return made;
    };
    const auto signOf = [](int value) {
        return (value > 0) - (value < 0);
    };
    for (int round = 0; round < 20'000; ++round) {
        const std::wstring a = text();
        const std::wstring b = text();
        ASSERT_EQ(signOf(ascending(a.c_str(), b.c_str())), signOf(descending(b.c_str(), a.c_str())))
            << testing::PrintToString(a) << " " << testing::PrintToString(b);
    }
}

} // namespace
