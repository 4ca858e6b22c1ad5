// What a host does to its list while a dialog on one of the rows is open; lists that sort by themselves; no list.
#include "tests/quota/rule_list_test.h"

#include "res/resource.h"
#include "tests/support/message_watch.h"
#include "tests/support/owner_window.h"
#include "tests/support/rule_memory.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;

namespace {

struct ListMeanwhileTest : RuleListTest {
    void* const alice = store.account("alice");
    void* const bob = store.account("bob");
    void* const staff = store.account("staff");

    void SetUp() override
    {
        store.put(L"C:\\old", bob, 2048, 1024, 0);
        store.put(L"C:\\other", bob, 4096, 1024, 0);
        store.put(L"C:\\late", alice, 8192, 1024, 0);
        prepare({L"C:\\old", L"C:\\other"});
    }

    /// Adds for anyone on C:\new; does something to the list while the dialog is open.
    bool addWhile(const DialogScript::Act& meanwhile)
    {
        return add(nullptr, {L"C:\\new"}, Visit().ok([&](HWND dialog) {
            typeLimits(dialog, L"10K", L"5K");
            meanwhile(dialog);
        }));
    }

    /// The same with a group of two, copied to its members.
    bool addGroupWhile(const DialogScript::Act& meanwhile)
    {
        groupHas(store, {alice, bob});
        return add(staff, {L"C:\\new"}, Visit().ok([&](HWND dialog) {
            click(dialog, IDC_QUOTA_GROUP_MEMBERS);
            meanwhile(dialog);
        }));
    }

    bool editWhile(const DialogScript::Act& meanwhile)
    {
        return edit(Visit().ok([&](HWND dialog) {
            typeLimits(dialog, L"2000", L"1500");
            meanwhile(dialog);
        }));
    }

    /// The last chain that went to the debug channel.
    std::string lastDump() const { return store.callsWith("debug").back(); }
};

} // namespace

TEST_F(ListMeanwhileTest, AnAddedRuleFindsItsRowAfterAFill)
{
    EXPECT_TRUE(addWhile([this](HWND) { fill({L"C:\\late"}); }));
    EXPECT_THAT(host.rows(2), ElementsAre("alice|8192 ", "Anyone|10240 ", "bob|4096 ", "bob|2048 "));
    EXPECT_EQ(lastDump(), "debug {alice C:\\late, Anyone C:\\new, bob C:\\other, bob C:\\old}");
    EXPECT_THAT(chainTexts(host.record(0)),
                ElementsAre("alice C:\\late", "Anyone C:\\new", "bob C:\\other", "bob C:\\old"));
}

TEST_F(ListMeanwhileTest, AnAddedRuleFindsItsRowAfterASort)
{
    EXPECT_TRUE(addWhile([this](HWND) {
        sort(0);
        sort(0); // from A to Z
        sort(0); // from Z to A
    }));
    EXPECT_THAT(host.rows(2), ElementsAre("bob|4096 ", "bob|2048 ", "Anyone|10240 "));
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("bob C:\\other", "bob C:\\old", "Anyone C:\\new"));
}

TEST_F(ListMeanwhileTest, AGroupFindsItsRowAfterAFill)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    EXPECT_TRUE(addGroupWhile([this](HWND) { fill({L"C:\\late"}); }));
    EXPECT_THAT(host.column(0), ElementsAre("bob", "alice", "alice", "staff", "bob", "bob"));
    EXPECT_THAT(host.column(4), ElementsAre("00%", "00%", "00%", "00%", "00%", "00%"));
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("bob C:\\new", "alice C:\\new", "alice C:\\late",
                                                        "staff C:\\new", "bob C:\\other", "bob C:\\old"));
}

TEST_F(ListMeanwhileTest, ARowThatIsGoneIsNotWritten)
{
    EXPECT_TRUE(addGroupWhile([this](HWND) { ListView_DeleteItem(host.list(), 0); }));
    EXPECT_THAT(host.rows(3), ElementsAre("bob|4096 |1024 ", "bob|2048 |1024 "));
    EXPECT_EQ(lastDump(), "debug {bob C:\\other, bob C:\\old}");
}

TEST_F(ListMeanwhileTest, ACancelTakesTheRightRowAway)
{
    EXPECT_FALSE(add(nullptr, {L"C:\\new"}, Visit().act([this](HWND dialog) {
        fill({L"C:\\late"});
        pressCancel(dialog);
    })));
    EXPECT_THAT(host.column(5), ElementsAre("C:\\late", "C:\\other", "C:\\old"));
}

TEST_F(ListMeanwhileTest, ACancelForARowThatIsGoneTakesNoneAway)
{
    EXPECT_FALSE(add(nullptr, {L"C:\\new"}, Visit().act([this](HWND dialog) {
        ListView_DeleteItem(host.list(), 0);
        pressCancel(dialog);
    })));
    EXPECT_THAT(host.column(5), ElementsAre("C:\\other", "C:\\old"));
}

TEST_F(ListMeanwhileTest, AnEditedRuleFindsItsRowAfterAFill)
{
    host.selectOnly({0});
    EXPECT_TRUE(editWhile([this](HWND) { fill({L"C:\\late"}); }));
    EXPECT_THAT(host.column(1), ElementsAre("8192 ", "2000 ", "2048 "));
}

TEST_F(ListMeanwhileTest, AnEditedRowThatIsGoneIsNotWritten)
{
    host.selectOnly({0});
    EXPECT_TRUE(editWhile([this](HWND) { ListView_DeleteItem(host.list(), 0); }));
    EXPECT_THAT(host.column(1), ElementsAre("2048 "));
}

TEST_F(ListMeanwhileTest, AListThatIsGoneIsNotWritten)
{
    EXPECT_TRUE(addGroupWhile([this](HWND) { DestroyWindow(host.list()); }));
    EXPECT_EQ(lastDump(), "debug null");
}

TEST_F(ListMeanwhileTest, AListWithAnOrderOfItsOwnIsChainedInThatOrder)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    for (const DWORD style : {DWORD{LVS_SORTASCENDING}, DWORD{LVS_SORTDESCENDING}}) {
        ListHost sorted(style);
        initializeListCtrl2(sorted.object(), Paths{L"C:\\old"});
        groupHas(store, {alice, bob});
        EXPECT_NE(Visit().ok(clicks({IDC_QUOTA_GROUP_MEMBERS})).ok().run([&] {
            return addToListCtrl2(sorted.object(), staff, Paths{L"C:\\new", L"C:\\a"});
        }),
                  0);
        ASSERT_EQ(sorted.rowCount(), 5);
        for (int row = 0; row < 5; ++row) {
            EXPECT_EQ(sorted.record(row)->next, row == 4 ? nullptr : sorted.record(row + 1)) << row;
            EXPECT_EQ(sorted.record(row)->prev, row == 0 ? nullptr : sorted.record(row - 1)) << row;
        }
    }
}

TEST_F(ListMeanwhileTest, ThereTooACancelStartsANewChain)
{
    ListHost sorted(LVS_SORTASCENDING);
    initializeListCtrl2(sorted.object(), Paths{L"C:\\old"});
    EXPECT_EQ(Visit().cancel().ok().run(
                  [&] { return addToListCtrl2(sorted.object(), alice, Paths{L"C:\\a", L"C:\\b"}); }),
              0);
    EXPECT_EQ(lastDump(), "debug {alice C:\\b}");
    EXPECT_EQ(chainTexts(getDataModified2(sorted.object())).size(), 2u);
}

TEST_F(ListMeanwhileTest, MembersGoInWithRedrawingOff)
{
    std::vector<void*> accounts;
    for (int i = 0; i < 50; ++i) {
        accounts.push_back(store.account("member" + std::to_string(i)));
    }
    groupHas(store, {accounts.begin(), accounts.end()});
    bool drawing = true;
    int drawn = 0;
    const MessageWatch watch(host.list(), [&](UINT message, WPARAM wParam, LPARAM) {
        if (message == WM_SETREDRAW) {
            drawing = wParam != 0;
        } else if (message == LVM_INSERTITEMW && drawing) {
            ++drawn;
        }
    });
    EXPECT_TRUE(add(staff, {L"C:\\new"}, Visit().ok(clicks({IDC_QUOTA_GROUP_MEMBERS}))));
    EXPECT_EQ(host.rowCount(), 53);
    EXPECT_EQ(drawn, 1) << "the group's own row, before its dialog";
    EXPECT_TRUE(drawing);
}

TEST_F(ListMeanwhileTest, WithoutAListNoStrangerIsDisabled)
{
    // What the platform calls the top window of no window at all.
    const OwnerWindow stranger;
    SetWindowPos(stranger.window(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    const auto look = [&](HWND dialog) {
        EXPECT_TRUE(IsWindowEnabled(stranger.window()));
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr);
    };
    EXPECT_NE(Visit().ok(look).run(
                  [this] { return addToListCtrl(host.window(), 500, nullptr, Paths{L"C:\\new"}); }),
              0);
}

// A panel that goes down may end the dialogs over it, with whatever code.
TEST_F(ListMeanwhileTest, AnEditThatSomebodyElseEndsIsCancelled)
{
    host.selectOnly({0});
    const std::vector<std::string> before = host.rows();
    for (const INT_PTR code : {1, 2, 4711}) {
        EXPECT_FALSE(edit(Visit().act([=](HWND dialog) {
            typeLimits(dialog, L"2000", L"1500");
            EndDialog(dialog, code);
        }))) << code;
        EXPECT_EQ(host.rows(), before);
    }
}

TEST_F(ListMeanwhileTest, AnAdditionThatSomebodyElseEndsIsCancelled)
{
    const std::vector<std::string> before = host.rows();
    for (const INT_PTR code : {1, 2, 4711}) {
        EXPECT_FALSE(add(alice, {L"C:\\new"}, Visit().act([=](HWND dialog) { EndDialog(dialog, code); })))
            << code;
        EXPECT_EQ(host.rows(), before);
    }
}
