#include "frame/sort_rank.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

int sign(int value)
{
    return (value > 0) - (value < 0);
}

std::vector<SortKey> keysOf(const std::vector<std::wstring>& texts)
{
    std::vector<SortKey> keys;
    for (const std::wstring& text : texts) {
        keys.push_back(sortKey(text.c_str()));
    }
    return keys;
}

/// Every two keys compare by their ranks as by themselves.
void expectSameOrder(const std::vector<std::wstring>& texts)
{
    const std::vector<SortKey> keys = keysOf(texts);
    std::vector<std::uint32_t> ranks(keys.size());
    ASSERT_TRUE(rankKeys(keys, ranks));
    for (std::size_t a = 0; a < keys.size(); ++a) {
        for (std::size_t b = 0; b < keys.size(); ++b) {
            for (const bool descending : {false, true}) {
                ASSERT_EQ(sign(compareRanks(ranks[a], ranks[b], descending)),
                          sign(compareSortKeys(keys[a], keys[b], descending)))
                    << a << " and " << b;
            }
        }
    }
}

TEST(SortRank, Texts)
{
    expectSameOrder(
        {L"bob", L"Alice", L"alice", L"", L"al", L"ALICE B", L"_x", L"^x", L"zoe", L"Zoe2", L"[x"});
}

TEST(SortRank, TextsThatBeginAlike)
{
    expectSameOrder({L"SALES\\user0000001", L"sales\\USER0000001", L"Sales\\user0000001x",
                     L"SALES\\user000000", L"SALES\\user0000002", L"SALES\\user000000199999",
                     L"SALES\\user00000019999"});
    expectSameOrder({L"SALES\\", L"SALES\\", L"sales\\"});
    expectSameOrder({L"one"});
    expectSameOrder({});
}

TEST(SortRank, TextsOfAllAlphabets)
{
    expectSameOrder({L"\u00dcbung", L"\u00fcbung", L"ubung", L"z", L"\u0416", L"\u0436", L"A\u00dc",
                     L"a\u00fc", L"Ab", L"abcdefgh\u00dc", L"ABCDEFGH\u00fc", L"abcdefghz"});
}

TEST(SortRank, Numbers)
{
    expectSameOrder({L"1024K", L"1M", L"0 ", L"-1 ", L"5", L"7%", L"2147483647", L"1G"});
}

TEST(SortRank, NumbersWhoseDifferencesAreCut)
{
    expectSameOrder({L"0 ", L"1G", L"2G", L"3G", L"4G", L"5G", L"1T", L"-2G", L"2147483648", L"4294967295"});
}

TEST(SortRank, NumbersAmongTexts)
{
    const std::vector<std::wstring> texts{L"10", L"9", L"1x", L"a"};
    std::vector<std::uint32_t> ranks(texts.size());
    EXPECT_FALSE(rankKeys(keysOf(texts), ranks));
}

TEST(SortRank, ManyOfAnyKind)
{
    std::mt19937 random(20);
    constexpr wchar_t kLetters[] = L"aAbBzZ_[0\\\u00e4\u00c4";
    for (int round = 0; round < 200; ++round) {
        const auto kinds = round % 2 == 0 ? 10u : 12u; // with and without letters beyond the common ones
        std::vector<std::wstring> texts;
        for (int i = 0; i < 40; ++i) {
            std::wstring text = L"x"; // no number
            for (auto length = random() % 14; length > 0; --length) {
                text += kLetters[random() % kinds];
            }
            texts.push_back(text);
        }
        expectSameOrder(texts);
    }
}

} // namespace
