// Filling the quota list from the store.
#include "tests/quota/list_fill_test.h"

#include "tests/support/import_patch.h"
#include "tests/support/message_watch.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ListFillTest, PutsEachRuleOnTop)
{
    store.put(L"C:\\a", nullptr, 104857600, 99614720, 3145728);
    store.put(L"C:\\a", alice, 1048576, 1048577, 52428);
    store.put(L"C:\\b", bob, int64_t{5} << 30, int64_t{2} << 40, 0);
    fill({L"C:\\a", L"C:\\b"});
    EXPECT_THAT(host.rows(), ElementsAre("SALES\\bob|5120M|2048G|0 |00%|C:\\b",
                                         "SALES\\alice|1048576 |1024K|52428 |04%|C:\\a",
                                         "Anyone|102400K|97280K|3072K|03%|C:\\a"));
}

TEST_F(ListFillTest, AsksTheStoreInThisOrder)
{
    store.put(L"C:\\a", nullptr, 100, 90, 0);
    store.put(L"C:\\a", alice, 100, 91, 0);
    store.put(L"C:\\c", bob, 100, 92, 0);
    fill({L"C:\\a", L"C:\\b", L"C:\\c"});
    EXPECT_THAT(store.calls(),
                ElementsAre("getQuotaList C:\\a", "getTextualSidW SALES\\alice 128",
                            "getAccountBySidW SALES\\alice 128", "getQuotaList C:\\b", "getQuotaList C:\\c",
                            "getTextualSidW SALES\\bob 128", "getAccountBySidW SALES\\bob 128"));
}

TEST_F(ListFillTest, ShowsTheTextualSidOfAnUnknownAccount)
{
    store.put(L"C:\\a", store.unknownAccount(), 100, 90, 0);
    fill({L"C:\\a"});
    EXPECT_THAT(host.column(0), ElementsAre("S-1-5-21-1-2-3-1003"));
}

TEST_F(ListFillTest, CutsANameThatFillsItsBuffer)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.answer.getAccountBySidW = [](const void*, wchar_t* buffer, int capacity) {
        return std::wmemset(buffer, L'n', static_cast<size_t>(capacity));
    };
    fill({L"C:\\a"});
    EXPECT_EQ(host.column(0).at(0), std::string(127, 'n'));
    store.answer.getAccountBySidW = nullptr;
    store.answer.getTextualSidW = [](const void*, wchar_t* buffer, int capacity) {
        std::wmemset(buffer, L's', static_cast<size_t>(capacity));
    };
    prepare({L"C:\\a"});
    EXPECT_EQ(host.column(0).at(0), std::string(127, 's'));
}

TEST_F(ListFillTest, TheStoresRecordsAreTheItemData)
{
    store.put(L"C:\\a", nullptr, 100, 90, 0);
    QuotaRule* given = nullptr;
    const auto usual = store.answer.getQuotaList;
    store.answer.getQuotaList = [&](const wchar_t* folder) {
        return given = usual(folder);
    };
    fill({L"C:\\a"});
    EXPECT_NE(given, nullptr);
    EXPECT_EQ(host.record(0), given);
}

TEST_F(ListFillTest, LinksTheRecordsInRowOrder)
{
    for (int i = 0; i < 3; ++i) {
        store.put(L"C:\\a", alice, 100 + i, 90, 0);
        store.put(L"C:\\b", bob, 100 + i, 90, 0);
    }
    fill({L"C:\\a", L"C:\\b"});
    EXPECT_THAT(chainTexts(host.record(0)),
                ElementsAre("SALES\\bob C:\\b", "SALES\\bob C:\\b", "SALES\\bob C:\\b", "SALES\\alice C:\\a",
                            "SALES\\alice C:\\a", "SALES\\alice C:\\a"));
    for (int row = 0; row < 6; ++row) {
        EXPECT_EQ(host.record(row)->next, row == 5 ? nullptr : host.record(row + 1));
        EXPECT_EQ(host.record(row)->prev, row == 0 ? nullptr : host.record(row - 1));
    }
}

TEST_F(ListFillTest, LinksTheRecordsThatWereThereBeforeAsWell)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\b", bob, 100, 90, 0);
    fill({L"C:\\a"});
    fill({L"C:\\b"});
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("SALES\\bob C:\\b", "SALES\\alice C:\\a"));
}

TEST_F(ListFillTest, AddsNothingTwice)
{
    store.put(L"C:\\a", nullptr, 100, 90, 0);
    show(L"C:\\a", alice, 100, 90, 0);
    QuotaRule* const first = host.record(0);
    fill({L"C:\\a"});
    fill({L"C:\\a", L"C:\\a"});
    EXPECT_EQ(host.rowCount(), 2);
    EXPECT_EQ(host.record(0), first);
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("SALES\\alice C:\\a", "Anyone C:\\a"));
}

TEST_F(ListFillTest, AddsNothingTwiceOutOfOneChain)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    show(L"C:\\a", alice, 100, 90, 0);
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListFillTest, KnowsRulesByLimitsFolderAndAccount)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\a", alice, 101, 90, 0); // another hard limit
    store.put(L"C:\\a", alice, 100, 91, 0); // another soft limit
    store.put(L"C:\\a", bob, 100, 90, 0);   // another account
    show(L"C:\\a", nullptr, 100, 90, 0);
    EXPECT_EQ(host.rowCount(), 5);
}

TEST_F(ListFillTest, KnowsFoldersLetterByLetter)
{
    store.answer.getQuotaList = [](const wchar_t* folder) {
        return RecordingStore::makeRule(folder, nullptr, 100, 90, 0);
    };
    fill({L"C:\\a", L"C:\\A", L"C:/a", L"C:\\a"});
    EXPECT_THAT(host.column(5), ElementsAre("C:/a", "C:\\A", "C:\\a"));
}

TEST_F(ListFillTest, DoesNotKnowRulesByWhatIsInUse)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    show(L"C:\\a", alice, 100, 90, 55);
    EXPECT_THAT(host.column(3), ElementsAre("0 "));
}

TEST_F(ListFillTest, ComparesAccountsLast)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    store.put(L"C:\\a", bob, 101, 90, 0);
    store.put(L"C:\\a", bob, 100, 91, 0);
    store.put(L"C:\\b", bob, 100, 90, 0);
    fill({L"C:\\a", L"C:\\b"});
    EXPECT_THAT(store.callsWith("sidcmp"), IsEmpty());
    store.put(L"C:\\b", alice, 100, 90, 0);
    store.takeCalls();
    fill({L"C:\\b"});
    EXPECT_THAT(store.callsWith("sidcmp"), testing::Not(IsEmpty()));
}

TEST_F(ListFillTest, EnablesTheList)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    EnableWindow(host.list(), FALSE);
    fill({L"C:\\a"});
    EXPECT_TRUE(IsWindowEnabled(host.list()));
    EnableWindow(host.list(), FALSE);
    fill({L"C:\\a"});
    EXPECT_TRUE(IsWindowEnabled(host.list())) << "though there was nothing new";
}

TEST_F(ListFillTest, DoesNothingForAFolderWithoutRules)
{
    EnableWindow(host.list(), FALSE);
    fill({L"C:\\a"});
    EXPECT_FALSE(IsWindowEnabled(host.list()));
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_THAT(store.calls(), ElementsAre("getQuotaList C:\\a"));
}

TEST_F(ListFillTest, DoesNothingWithoutFolders)
{
    fill({});
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListFillTest, LetsTheListBeDrawnAgain)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    ShowWindow(host.window(), SW_SHOWNA);
    ShowWindow(host.list(), SW_SHOWNA);
    fill({L"C:\\a"});
    EXPECT_TRUE(IsWindowVisible(host.list()));
}

TEST_F(ListFillTest, ShowsPercents)
{
    EXPECT_EQ(percentOf(5, 100), "05%");
    EXPECT_EQ(percentOf(0, 100), "00%");
    EXPECT_EQ(percentOf(99, 1000), "09%");
    EXPECT_EQ(percentOf(100, 100), "100%");
    EXPECT_EQ(percentOf(9999, 100), "9999%");
    EXPECT_EQ(percentOf(-5, 100), "-05%");
    EXPECT_EQ(percentOf(-1, 104857600), "00%");
}

TEST_F(ListFillTest, CutsPercentsThatDoNotFit)
{
    EXPECT_EQ(percentOf(10000, 100), "10000");
    EXPECT_EQ(percentOf(1234567, 100), "12345");
    EXPECT_EQ(percentOf(-1234567, 100), "-1234");
}

TEST_F(ListFillTest, TakesPercentsAs32BitNumbers)
{
    EXPECT_EQ(percentOf(42949673, 1), "04%"); // 4294967300
}

TEST_F(ListFillTest, NoRowMovesAnother)
{
    for (int i = 0; i < 5; ++i) {
        store.put(L"C:\\a", alice, 100 + i, 90, 0);
        store.put(L"C:\\b", bob, 100 + i, 90, 0);
    }
    int moved = 0;
    const MessageWatch watch(host.list(), [&](UINT message, WPARAM, LPARAM item) {
        if (message == LVM_INSERTITEMW) {
            moved += host.rowCount() - reinterpret_cast<const LVITEMW*>(item)->iItem;
        }
    });
    fill({L"C:\\a"});
    EXPECT_EQ(moved, 0);
    fill({L"C:\\b"});
    EXPECT_EQ(moved, 25) << "five times those that were there";
    EXPECT_THAT(host.column(1),
                ElementsAre("104 ", "103 ", "102 ", "101 ", "100 ", "104 ", "103 ", "102 ", "101 ", "100 "));
}

namespace {

std::vector<HWND> repainted;

BOOL WINAPI noteRepaint(HWND window, const RECT*, BOOL)
{
    repainted.push_back(window);
    return TRUE;
}

} // namespace

TEST_F(ListFillTest, WithoutAListTheDesktopIsNotRepainted)
{
    store.put(L"C:\\a", alice, 100, 90, 0);
    const ImportPatch repaint(ImportPatch::corvane(), "InvalidateRect", noteRepaint);
    ASSERT_EQ(repaint.count(), 1);
    repainted.clear();
    fill({L"C:\\a"});
    EXPECT_THAT(repainted, ElementsAre(host.list()));
    repainted.clear();
    fillUpListCtrl(Paths{L"C:\\a"}, host.window(), 500);
    EXPECT_THAT(repainted, IsEmpty());
}

TEST_F(ListFillTest, FillsThousandsOfRules)
{
    constexpr int kMany = 3000;
    for (int i = 1; i <= kMany; ++i) {
        store.put(L"C:\\a", i % 2 == 0 ? alice : bob, i, 1, 0);
    }
    fill({L"C:\\a"});
    fill({L"C:\\a"});
    ASSERT_EQ(host.rowCount(), kMany);
    EXPECT_EQ(host.row(0, 2), "SALES\\alice|3000 ");
    EXPECT_EQ(host.row(kMany - 1, 2), "SALES\\bob|1 ");
    EXPECT_EQ(chainTexts(host.record(0)).size(), static_cast<size_t>(kMany));
}
