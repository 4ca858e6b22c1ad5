// Dropping rows, and handing the chain back.
#include "tests/quota/rule_list_test.h"

#include "tests/support/message_watch.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct ListDropTest : RuleListTest {
    /// Rows of the folders "0", "1", ... from top to bottom.
    void fillRows(int rows)
    {
        store.answer.getQuotaList = [rows](const wchar_t*) {
            std::vector<QuotaRule*> rules; // the last comes first, and so ends up at the bottom
            for (int i = rows; i-- > 0;) {
                rules.push_back(RecordingStore::makeRule(std::to_wstring(i).c_str(), nullptr, 100, 90, 0));
            }
            return RecordingStore::linked(rules);
        };
        prepare({L"C:\\a"});
        store.takeCalls();
    }
};

} // namespace

TEST_F(ListDropTest, RowsOneAndThreeOfFive)
{
    fillRows(5);
    EXPECT_TRUE(drop({1, 3}));
    EXPECT_THAT(host.column(5), ElementsAre("0", "2", "4"));
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("Anyone 0", "Anyone 2", "Anyone 4"));
    EXPECT_EQ(host.record(0)->next, host.record(1));
    EXPECT_EQ(host.record(1)->next, host.record(2));
    EXPECT_EQ(host.record(0)->prev, nullptr);
    EXPECT_EQ(host.record(2)->next, nullptr);
}

TEST_F(ListDropTest, NeighboursAndEnds)
{
    fillRows(6);
    EXPECT_TRUE(drop({0, 2, 3, 5}));
    EXPECT_THAT(host.column(5), ElementsAre("1", "4"));
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("Anyone 1", "Anyone 4"));
}

TEST_F(ListDropTest, TheHostIsToldOfEachDroppedRow)
{
    fillRows(6);
    host.selectOnly({1, 3, 4});
    const std::vector<LPARAM> expected{host.data(1), host.data(3), host.data(4)};
    std::vector<LPARAM> told;
    const MessageWatch watch(host.window(), [&](UINT message, WPARAM, LPARAM header) {
        if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(header)->code == LVN_DELETEITEM) {
            told.push_back(reinterpret_cast<const NMLISTVIEW*>(header)->lParam);
        }
    });
    EXPECT_TRUE(drop());
    EXPECT_THAT(told, testing::UnorderedElementsAreArray(expected));
}

TEST_F(ListDropTest, RowsThatGoMoveNoneThatGo)
{
    fillRows(6);
    host.selectOnly({1, 3, 4});
    std::vector<WPARAM> deleted;
    const MessageWatch watch(host.list(), [&](UINT message, WPARAM row, LPARAM) {
        if (message == LVM_DELETEITEM) {
            deleted.push_back(row);
            EXPECT_EQ(host.selectedCount(), 0u);
        }
    });
    EXPECT_TRUE(drop());
    EXPECT_THAT(deleted, ElementsAre(4u, 3u, 1u));
}

TEST_F(ListDropTest, RecordsLeaveTheChainDownwards)
{
    fillRows(4);
    QuotaRule* const first = host.record(0);
    QuotaRule* const upper = host.record(1);
    QuotaRule* const lower = host.record(2);
    QuotaRule* const last = host.record(3);
    EXPECT_TRUE(drop({1, 2}));
    EXPECT_EQ(upper->prev, first);
    EXPECT_EQ(upper->next, lower);
    EXPECT_EQ(lower->prev, first);
    EXPECT_EQ(lower->next, last);
    EXPECT_EQ(first->next, last);
    EXPECT_EQ(last->prev, first);
}

TEST_F(ListDropTest, TheFocusStaysOnItsRow)
{
    fillRows(6);
    host.selectOnly({0, 1, 4});
    host.focus(3);
    EXPECT_TRUE(drop());
    EXPECT_EQ(host.focused(), 1);
    EXPECT_THAT(host.column(5), ElementsAre("2", "3", "5"));
    EXPECT_EQ(host.selectedCount(), 0u);
}

TEST_F(ListDropTest, AllRows)
{
    fillRows(3);
    EXPECT_TRUE(drop({0, 1, 2}));
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_EQ(chain(), nullptr);
}

TEST_F(ListDropTest, AnEmptyListGivesFalse)
{
    prepare();
    EXPECT_FALSE(drop());
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListDropTest, NoSelectionGivesFalse)
{
    fillRows(3);
    EXPECT_FALSE(drop());
    EXPECT_EQ(host.rowCount(), 3);
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("Anyone 0", "Anyone 1", "Anyone 2"));
}

TEST_F(ListDropTest, WithoutAListNothingIsDropped)
{
    fillRows(3);
    host.selectOnly({1});
    constexpr int kButton = 77;
    host.addControl(kButton);
    EXPECT_EQ(dropFromListCtrl(host.window(), 500), 0) << "no such control";
    EXPECT_EQ(dropFromListCtrl(host.window(), kButton), 0) << "a button's number";
    EXPECT_EQ(dropFromListCtrl(nullptr, ListHost::kListId), 0) << "no dialog";
    CorvaneListObject object{};
    EXPECT_EQ(dropFromListCtrl2(reinterpret_cast<CListCtrl*>(&object)), 0) << "no window";
    object.window =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(object.window);
    EXPECT_EQ(dropFromListCtrl2(reinterpret_cast<CListCtrl*>(&object)), 0) << "a window that is gone";
    EXPECT_EQ(host.rowCount(), 3);
}

TEST_F(ListDropTest, AsksTheStoreNothing)
{
    fillRows(3);
    drop({1});
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListDropTest, KeepsTheDroppedRecord)
{
    fillRows(3);
    QuotaRule* const dropped = host.record(1);
    drop({1});
    EXPECT_STREQ(dropped->path, L"1");
    EXPECT_EQ(dropped->hardLimit, 100);
}

TEST_F(ListDropTest, LeavesTheDroppedRuleFreeToBeFilledAgain)
{
    fillRows(3);
    drop({0, 1, 2});
    fill({L"C:\\a"});
    EXPECT_THAT(host.column(5), ElementsAre("0", "1", "2"));
}

TEST_F(ListDropTest, EverySecondOfAThousand)
{
    fillRows(1000);
    std::vector<int> odd;
    for (int i = 1; i < 1000; i += 2) {
        odd.push_back(i);
    }
    EXPECT_TRUE(drop(odd));
    ASSERT_EQ(host.rowCount(), 500);
    const auto chain = chainTexts(host.record(0));
    ASSERT_EQ(chain.size(), 500u);
    for (size_t i = 0; i < 500; ++i) {
        EXPECT_EQ(chain[i], "Anyone " + std::to_string(2 * i));
        EXPECT_EQ(host.column(5)[i], std::to_string(2 * i));
    }
}

TEST_F(ListDropTest, TheChainOfAnEmptyListIsNull)
{
    prepare();
    EXPECT_EQ(chain(), nullptr);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListDropTest, TheChainIsHandedBackInRowOrderAndDumped)
{
    fillRows(3);
    for (int row = 0; row < 3; ++row) { // broken, as an outsider might
        host.record(row)->next = host.record(row);
        host.record(row)->prev = host.record(2);
    }
    QuotaRule* const first = chain();
    EXPECT_EQ(first, host.record(0));
    EXPECT_THAT(chainTexts(first), ElementsAre("Anyone 0", "Anyone 1", "Anyone 2"));
    EXPECT_THAT(store.calls(), ElementsAre("debug {Anyone 0, Anyone 1, Anyone 2}"));
}

TEST_F(ListDropTest, TheChainFollowsTheSortedRows)
{
    fillRows(3);
    sort(0);
    sort(5); // numbers, small to large
    sort(5); // and the other way round
    EXPECT_THAT(host.column(5), ElementsAre("2", "1", "0"));
    EXPECT_THAT(chained(), ElementsAre("Anyone 2", "Anyone 1", "Anyone 0"));
}

TEST_F(ListDropTest, RowsAreCounted)
{
    prepare();
    EXPECT_EQ(countItems2(host.object()), 0);
    fillRows(4);
    EXPECT_EQ(countItems2(host.object()), 4);
}
