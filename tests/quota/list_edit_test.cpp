// Editing a rule of the quota list.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/faulting_call.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct ListEditTest : testing::Test {
    RecordingStore store;
    ListHost host;
    void* const alice = store.account("alice");

    void SetUp() override
    {
        store.put(L"C:\\c", nullptr, 4096, 3072, 100);
        store.put(L"C:\\b", alice, 4096, 3072, 1000);
        store.put(L"C:\\a", nullptr, 4096, 3072, 0);
        initializeListCtrl2(host.object(), Paths{L"C:\\c", L"C:\\b", L"C:\\a"});
        store.takeCalls();
    }

    unsigned char edit(DialogScript& script)
    {
        return script.run([this] { return editFromListCtrl2(host.object()); });
    }
};

} // namespace

TEST_F(ListEditTest, RewritesTheRow)
{
    host.selectOnly({1});
    QuotaRule* const rule = host.record(1);
    DialogScript script;
    script.onDialog("type", [](HWND dialog) { typeLimits(dialog, L"2000", L"1500"); })
        .onDialog("OK", pressOk);
    EXPECT_NE(edit(script), 0);
    EXPECT_THAT(host.rows(),
                ElementsAre("Anyone|4096 |3072 |0 |00%|C:\\a", "alice|2000 |1500 |1000 |50%|C:\\b",
                            "Anyone|4096 |3072 |100 |02%|C:\\c"));
    EXPECT_EQ(host.record(1), rule);
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("Anyone C:\\a", "alice C:\\b", "Anyone C:\\c"));
}

TEST_F(ListEditTest, AsksTheStoreInThisOrder)
{
    host.selectOnly({1});
    DialogScript script;
    script.onDialog("OK", pressOk);
    edit(script);
    EXPECT_THAT(store.calls(), ElementsAre("getAccountBySidW alice 128", "getRealSize C:\\b",
                                           "debug {alice C:\\b, Anyone C:\\c}"));
}

TEST_F(ListEditTest, ShowsTheTemplateForEditing)
{
    host.selectOnly({0});
    DialogScript script;
    script
        .onDialog("look",
                  [](HWND dialog) { EXPECT_EQ(GetDlgItem(dialog, IDC_QUOTA_GROUP_MEMBERS), nullptr); })
        .onDialog("OK", pressOk);
    edit(script);
}

TEST_F(ListEditTest, EditsTheFirstOfSeveral)
{
    host.selectOnly({1, 2});
    DialogScript script;
    script.onDialog("type", [](HWND dialog) { typeLimits(dialog, L"2000", L"1500"); })
        .onDialog("OK", pressOk);
    EXPECT_NE(edit(script), 0);
    EXPECT_THAT(host.column(1), ElementsAre("4096 ", "2000 ", "4096 "));
}

TEST_F(ListEditTest, CancelGivesFalseAndLeavesTheRow)
{
    folderHolds(store, 77);
    host.selectOnly({0});
    host.record(0)->inUse = QUOTA_IN_USE_UNKNOWN;
    DialogScript script;
    script.onDialog("type", [](HWND dialog) { typeLimits(dialog, L"2000", L"1500"); })
        .onDialog("Cancel", pressCancel);
    EXPECT_EQ(edit(script), 0);
    EXPECT_EQ(host.row(0), "Anyone|4096 |3072 |0 |00%|C:\\a");
    EXPECT_EQ(host.record(0)->inUse, 77) << "measured all the same";
    EXPECT_THAT(store.calls(), ElementsAre("getRealSize C:\\a"));
}

TEST_F(ListEditTest, AnEmptyListGivesFalse)
{
    initializeListCtrl2(host.object(), nullptr);
    EXPECT_EQ(editFromListCtrl2(host.object()), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, NoSelectionGivesTrue)
{
    EXPECT_NE(editFromListCtrl2(host.object()), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, ARowWithoutARecordGivesTrue)
{
    host.addRow(0, {L"stray"});
    host.selectOnly({3});
    EXPECT_NE(editFromListCtrl2(host.object()), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, OnlyTheFirstSelectedRowIsLookedAt)
{
    initializeListCtrl2(host.object(), nullptr);
    host.addRow(0, {L"stray"});
    fillUpListCtrl2(Paths{}, host.object());
    host.addRow(reinterpret_cast<LPARAM>(newRule()), {L"rule"});
    host.selectOnly({0, 1});
    EXPECT_NE(editFromListCtrl2(host.object()), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, ADialogThatCannotBeShownGivesFalse)
{
    host.selectOnly({1});
    const HiddenDialog all;
    EXPECT_EQ(editFromListCtrl2(host.object()), 0);
    EXPECT_EQ(host.row(1), "alice|4096 |3072 |1000 |24%|C:\\b");
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ListEditTest, TheListsWindowOwnsTheDialog)
{
    host.selectOnly({1});
    DialogScript script;
    script.onDialog("look", [this](HWND dialog) { EXPECT_EQ(GetWindow(dialog, GW_OWNER), host.window()); })
        .onDialog("OK", pressOk);
    edit(script);
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
    DialogScript script;
    script.onDialog("type", [](HWND dialog) { typeLimits(dialog, L"1024", L"0"); }).onDialog("OK", pressOk);
    edit(script);
    EXPECT_EQ(host.row(2), "Anyone|1024 |0 |100 |09%|C:\\c");
}
