// Sorting list views.
#include "tests/quota/rule_list_test.h"

#include "tests/support/text.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

struct ListSortTest : RuleListTest {
    void SetUp() override { prepare(); }

    /// Puts texts into a column, one a row; the item data counts from 1.
    void put(int column, const std::vector<std::wstring>& texts)
    {
        SendMessageW(host.list(), LVM_DELETEALLITEMS, 0, 0);
        LPARAM data = 0;
        for (const std::wstring& text : texts) {
            host.addRow(++data, {});
            host.setCell(host.rowCount() - 1, column, text.c_str());
        }
    }

    /// The texts as they stand after the first, and after the second, call for a column.
    std::vector<std::string> sortedOnce(const std::vector<std::wstring>& texts)
    {
        forgetColumn();
        put(kColumn, texts);
        sort(kColumn);
        return host.column(kColumn);
    }
    std::vector<std::string> sortedTwice(const std::vector<std::wstring>& texts)
    {
        sortedOnce(texts);
        sort(kColumn);
        return host.column(kColumn);
    }

    /// Makes the next call for any other column the first one.
    void forgetColumn()
    {
        SendMessageW(host.list(), LVM_DELETEALLITEMS, 0, 0);
        sort(kOther);
    }

    static constexpr int kColumn = 3;
    static constexpr int kOther = 5;
};

} // namespace

TEST_F(ListSortTest, NumbersAscendFirst)
{
    EXPECT_THAT(sortedOnce({L"20 ", L"3 ", L"100 "}), ElementsAre("3 ", "20 ", "100 "));
    EXPECT_THAT(sortedTwice({L"20 ", L"3 ", L"100 "}), ElementsAre("100 ", "20 ", "3 "));
}

TEST_F(ListSortTest, TextsDescendFirst)
{
    EXPECT_THAT(sortedOnce({L"bob", L"Zoe", L"alice"}), ElementsAre("Zoe", "bob", "alice"));
    EXPECT_THAT(sortedTwice({L"bob", L"Zoe", L"alice"}), ElementsAre("alice", "bob", "Zoe"));
}

TEST_F(ListSortTest, AThirdCallTurnsTheOrderAgain)
{
    sortedTwice({L"1 ", L"2 "});
    sort(kColumn);
    EXPECT_THAT(host.column(kColumn), ElementsAre("1 ", "2 "));
}

TEST_F(ListSortTest, UnitsScaleNumbers)
{
    EXPECT_THAT(sortedOnce({L"1M", L"2000K", L"1048575 ", L"1K", L"1000 "}),
                ElementsAre("1000 ", "1K", "1048575 ", "1M", "2000K"));
    EXPECT_THAT(sortedOnce({L"1m", L"2k", L"1", L"1000b"}), ElementsAre("1", "1000b", "2k", "1m"));
}

TEST_F(ListSortTest, NegativeNumbersAreNumbers)
{
    EXPECT_THAT(sortedOnce({L"0 ", L"-1 ", L"-1K"}), ElementsAre("-1K", "-1 ", "0 "));
}

TEST_F(ListSortTest, PercentsAreNumbers)
{
    EXPECT_THAT(sortedOnce({L"100%", L"05%", L"-01%", L"20%"}), ElementsAre("-01%", "05%", "20%", "100%"));
}

TEST_F(ListSortTest, TextsThatBeginWithANumberAreNumbers)
{
    EXPECT_THAT(sortedOnce({L"10 years", L"9 lives", L" 2 many"}),
                ElementsAre(" 2 many", "9 lives", "10 years"));
}

TEST_F(ListSortTest, ANumberAndATextCompareAsTexts)
{
    EXPECT_THAT(sortedOnce({L"10K", L"abc"}), ElementsAre("abc", "10K"));
    EXPECT_THAT(sortedTwice({L"10K", L"abc"}), ElementsAre("10K", "abc"));
    EXPECT_THAT(sortedOnce({L"10K", L""}), ElementsAre("10K", ""));
    EXPECT_THAT(sortedTwice({L"10K", L""}), ElementsAre("", "10K"));
}

TEST_F(ListSortTest, DifferencesAreCutTo32Bits)
{
    // 3 GiB less 0 is, cut, less than 0.
    EXPECT_THAT(sortedOnce({L"0 ", L"3072M"}), ElementsAre("3072M", "0 "));
    EXPECT_THAT(sortedTwice({L"3072M", L"0 "}), ElementsAre("0 ", "3072M"));
    EXPECT_THAT(sortedOnce({L"2047M", L"0 "}), ElementsAre("0 ", "2047M"));
}

TEST_F(ListSortTest, SizesFourGigabytesApartAreEqual)
{
    EXPECT_THAT(sortedOnce({L"4096M", L"0 "}), ElementsAre("4096M", "0 "));
    EXPECT_THAT(sortedTwice({L"4096M", L"0 "}), ElementsAre("4096M", "0 "));
    EXPECT_THAT(sortedOnce({L"0 ", L"4T"}), ElementsAre("0 ", "4T"));
}

TEST_F(ListSortTest, AnotherColumnStartsAfresh)
{
    sortedTwice({L"1 ", L"2 "});
    put(1, {L"20 ", L"10 "});
    sort(1);
    EXPECT_THAT(host.column(1), ElementsAre("10 ", "20 "));
    put(kColumn, {L"20 ", L"10 "});
    sort(kColumn);
    EXPECT_THAT(host.column(kColumn), ElementsAre("10 ", "20 "));
}

TEST_F(ListSortTest, AllListsShareColumnAndOrder)
{
    sortedOnce({L"1 ", L"2 "});
    ListHost other;
    initializeListCtrl2(other.object(), nullptr);
    other.addRow(1, {L"", L"", L"", L"1 "});
    other.addRow(2, {L"", L"", L"", L"2 "});
    sortListCtrl2(other.object(), kColumn);
    EXPECT_THAT(other.column(kColumn), ElementsAre("2 ", "1 "));
    sortListCtrl(host.window(), ListHost::kListId, kColumn);
    EXPECT_THAT(host.column(kColumn), ElementsAre("1 ", "2 "));
}

TEST_F(ListSortTest, ItemDataMovesWithItsRow)
{
    sortedOnce({L"3 ", L"1 ", L"2 "});
    EXPECT_EQ(host.data(0), 2);
    EXPECT_EQ(host.data(1), 3);
    EXPECT_EQ(host.data(2), 1);
}

TEST_F(ListSortTest, AnEmptyListIsSorted)
{
    sort(kColumn);
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_TRUE(store.calls().empty());
}

TEST_F(ListSortTest, LongTextsAreComparedWhole)
{
    const std::wstring stem(200, L'x');
    EXPECT_THAT(sortedOnce({stem + L"a", stem + L"b"}), ElementsAre(utf8(stem) + "b", utf8(stem) + "a"));
}

TEST_F(ListSortTest, SortsThousands)
{
    std::vector<std::wstring> texts;
    for (int i = 0; i < 1500; ++i) {
        texts.push_back(std::to_wstring((i * 7919) % 1500) + L' ');
    }
    const auto sorted = sortedOnce(texts);
    for (int i = 0; i < 1500; ++i) {
        EXPECT_EQ(sorted[static_cast<size_t>(i)], std::to_string(i) + " ");
    }
}

TEST_F(ListSortTest, TurningTheOrderTurnsTheComparisonEvenForUnequalCases)
{
    EXPECT_THAT(sortedOnce({L"ANN", L"ann"}), ElementsAre("ANN", "ann")) << "equal without regard to case";
    EXPECT_THAT(sortedTwice({L"ANN", L"ann"}), ElementsAre("ANN", "ann"));
}
