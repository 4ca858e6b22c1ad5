// Editing a rule of the quota list.
#include "tests/quota/rule_list_test.h"

#include "res/resource.h"
#include "tests/support/faulting_call.h"
#include "tests/support/hidden_dialog.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct ListEditTest : RuleListTest {
    void* const alice = store.account("alice");

    void SetUp() override
    {
        store.put(L"C:\\c", nullptr, 4096, 3072, 100);
        store.put(L"C:\\b", alice, 4096, 3072, 1000);
        store.put(L"C:\\a", nullptr, 4096, 3072, 0);
        prepare({L"C:\\c", L"C:\\b", L"C:\\a"});
        store.takeCalls();
    }
};

} // namespace

TEST_F(ListEditTest, RewritesTheRow)
{
    host.selectOnly({1});
    QuotaRule* const rule = host.record(1);
    EXPECT_TRUE(edit(Visit().ok(limits(L"2000", L"1500"))));
    EXPECT_THAT(host.rows(),
                ElementsAre("Anyone|4096 |3072 |0 |00%|C:\\a", "alice|2000 |1500 |1000 |50%|C:\\b",
                            "Anyone|4096 |3072 |100 |02%|C:\\c"));
    EXPECT_EQ(host.record(1), rule);
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("Anyone C:\\a", "alice C:\\b", "Anyone C:\\c"));
}

TEST_F(ListEditTest, AsksTheStoreInThisOrder)
{
    host.selectOnly({1});
    edit(Visit().ok());
    EXPECT_THAT(store.calls(), ElementsAre("getAccountBySidW alice 128", "getRealSize C:\\b",
                                           "debug {alice C:\\b, Anyone C:\\c}"));
}

TEST_F(ListEditTest, ShowsTheTemplateForEditing)
{
    host.selectOnly({0});
    edit(Visit().ok([](HWND dialog) { EXPECT_EQ(GetDlgItem(dialog, IDC_QUOTA_GROUP_MEMBERS), nullptr); }));
}

TEST_F(ListEditTest, EditsTheFirstOfSeveral)
{
    host.selectOnly({1, 2});
    EXPECT_TRUE(edit(Visit().ok(limits(L"2000", L"1500"))));
    EXPECT_THAT(host.column(1), ElementsAre("4096 ", "2000 ", "4096 "));
}

TEST_F(ListEditTest, CancelGivesFalseAndLeavesTheRow)
{
    folderHolds(store, 77);
    host.selectOnly({0});
    host.record(0)->inUse = QUOTA_IN_USE_UNKNOWN;
    EXPECT_FALSE(edit(Visit().cancel(limits(L"2000", L"1500"))));
    EXPECT_EQ(host.row(0), "Anyone|4096 |3072 |0 |00%|C:\\a");
    EXPECT_EQ(host.record(0)->inUse, 77) << "measured all the same";
    EXPECT_THAT(store.calls(), ElementsAre("getRealSize C:\\a"));
}

TEST_F(ListEditTest, AnEmptyListGivesFalse)
{
    prepare();
    EXPECT_FALSE(edit());
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, NoSelectionGivesTrue)
{
    EXPECT_TRUE(edit());
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, ARowWithoutARecordGivesTrue)
{
    host.addRow(0, {L"stray"});
    host.selectOnly({3});
    EXPECT_TRUE(edit());
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, OnlyTheFirstSelectedRowIsLookedAt)
{
    prepare();
    host.addRow(0, {L"stray"});
    fill({});
    host.addRow(reinterpret_cast<LPARAM>(newRule()), {L"rule"});
    host.selectOnly({0, 1});
    EXPECT_TRUE(edit());
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, ADialogThatCannotBeShownGivesFalse)
{
    host.selectOnly({1});
    const HiddenDialog all;
    EXPECT_FALSE(edit());
    EXPECT_EQ(host.row(1), "alice|4096 |3072 |1000 |24%|C:\\b");
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, TheListsWindowOwnsTheDialog)
{
    host.selectOnly({1});
    edit(Visit().ok([this](HWND dialog) { EXPECT_EQ(GetWindow(dialog, GW_OWNER), host.window()); }));
}

TEST_F(ListEditTest, AListWithoutAChildFaults)
{
    host.selectOnly({1});
    DestroyWindow(host.header());
    ASSERT_EQ(GetTopWindow(host.list()), nullptr);
    EXPECT_EQ(faultOf([this] { editFromListCtrl2(host.object()); }), EXCEPTION_ACCESS_VIOLATION);
}

TEST_F(ListEditTest, ANewLimitShowsItsNewPercentage)
{
    host.selectOnly({2});
    edit(Visit().ok(limits(L"1024", L"0")));
    EXPECT_EQ(host.row(2), "Anyone|1024 |0 |100 |09%|C:\\c");
}
