// The Notifications dialog: cells, the store calls of each action, indexes.
#include "corvane.h"
#include "res/resource.h"
#include "tests/policies/editor_visit.h"
#include "tests/policies/notification_case.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct NotificationsTest : testing::Test {
    PolicyStore store;
    EditorVisit visit{store, editNotifications, kNotificationEntry, IDC_NOTIFICATIONS_LIST};
};

std::vector<std::string> rendering(int index)
{
    const std::string at = ' ' + std::to_string(index);
    return {"getINAttr" + at + " 1", "getINAttr" + at + " 2", "getNAttr" + at + " 3",
            "getINAttr" + at + " 5"};
}

std::vector<std::string> with(std::vector<std::string> first, const std::vector<std::string>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace

TEST_F(NotificationsTest, TellsForWhomHowOftenAsWhomAndFromWhichGrowth)
{
    store.putNotification(L"anyone", {L"ignored", L"0", L"0", kNotSet, kNotSet, kNotSet});
    store.putNotification(L"account", {L"OFFICE\\jane", L"1", L"-1", L"OFFICE\\runner", L"pw", L"1048577"});
    store.putNotification(L"no account", {kNotSet, L"1", L"604800", L"", kNotSet, L"-1"});
    store.putNotification(L"of the limit", {kNotSet, L"2", L"300", kNotSet, kNotSet, L"5m"});
    store.putNotification(L"not of the limit", {kNotSet, L"3", L"90", kNotSet, kNotSet, L"7"});
    store.putNotification(L"beyond", {L"ignored", L"4", L"7200", kNotSet, kNotSet, L"0"});
    store.putNotification(L"below", {L"ignored", L"-1", kNotSet, kNotSet, kNotSet, L"0"});
    visit
        .rows({"below|Anyone|1day(s)|IUSR_VANTREL|0 ", "beyond|Anyone|2hr|IUSR_VANTREL|0 ",
               "not of the limit|Not as quota|1min|IUSR_VANTREL|7 ",
               "of the limit|As quota|5min|IUSR_VANTREL|5120K", "no account||1week(s)||-1 ",
               "account|OFFICE\\jane|no limit|OFFICE\\runner|1024K", "anyone|Anyone|1day(s)|IUSR_VANTREL|0 "})
        .cancel();
}

TEST_F(NotificationsTest, AsksTheCountOnEveryPass)
{
    store.putNotification(L"one", {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
    // An entry that appears while the list is filled is shown too.
    store.answer.loadNotifications = [] {
        return 1;
    };
    bool added = false;
    store.answer.getNotifications = [&](uint32_t index) {
        if (!added) {
            added = true;
            store.putNotification(L"two", {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
        }
        return store.scripts.get(index);
    };
    visit.data({1, 0}).cancel();
}

TEST_F(NotificationsTest, AsksForTheAccountWhereItIsShown)
{
    store.putNotification(L"one", {L"jane", L"1", L"0", kNotSet, kNotSet, L"0"});
    visit
        .calls({"loadNotifications", "getNotificationsCount", "getNotifications 0", "getINAttr 0 1",
                "getNAttr 0 0", "getINAttr 0 2", "getNAttr 0 3", "getINAttr 0 5", "getNotificationsCount"})
        .cancel();
}

TEST_F(NotificationsTest, AddsWithAllAttributesInOrder)
{
    store.putNotification(L"old", {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
    visit.add()
        .entry([](HWND entry) {
            type(entry, IDC_ENTRY_TEXT, L"C:\\new.vbs");
            click(entry, IDC_NOTIFY_ACCOUNT_ONLY);
            type(entry, IDC_NOTIFY_ACCOUNT, L"OFFICE\\jane");
            type(entry, IDC_NOTIFY_RUN_AS, L"OFFICE\\runner");
            type(entry, IDC_NOTIFY_PASSWORD, L"secret");
            type(entry, IDC_NOTIFY_MIN_INCREMENT, L"5m");
            click(entry, IDC_NOTIFY_PER_FIVE_MINUTES);
            clickLater(entry, IDOK);
        })
        .list([this](HWND dialog, const ListView& list) {
            EXPECT_EQ(
                store.takeCalls(),
                with({"addToNotifications C:\\new.vbs", "setNAttr 1 0 OFFICE\\jane", "setNAttr 1 1 1",
                      "setNAttr 1 2 300", "setNAttr 1 3 OFFICE\\runner", "setNAttr 1 4 secret",
                      "setNAttr 1 5 5m"},
                     {"getINAttr 1 1", "getNAttr 1 0", "getINAttr 1 2", "getNAttr 1 3", "getINAttr 1 5"}));
            EXPECT_THAT(list.rows(), ElementsAre("C:\\new.vbs|OFFICE\\jane|5min|OFFICE\\runner|5120K",
                                                 "old|Anyone|1day(s)|IUSR_VANTREL|0 "));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
            clickLater(dialog, IDOK);
        });
    EXPECT_EQ(visit.run(), 0);
    EXPECT_THAT(store.calls(), ElementsAre("storeNotifications", "freeNotifications"));
    EXPECT_STREQ(store.attribute(1, 4), L"secret");
}

TEST_F(NotificationsTest, AddsWhatANewEntryStartsWith)
{
    visit.add()
        .press(IDOK)
        .list([this](HWND, const ListView& list) {
            EXPECT_EQ(store.takeCalls(),
                      with({"addToNotifications", "setNAttr 0 0 null", "setNAttr 0 1 0", "setNAttr 0 2 86400",
                            "setNAttr 0 3 null", "setNAttr 0 4 null", "setNAttr 0 5 0"},
                           rendering(0)));
            EXPECT_THAT(list.rows(), ElementsAre("|Anyone|1day(s)|IUSR_VANTREL|0 "));
        })
        .cancel();
    EXPECT_THAT(store.scripts.present(), ElementsAre(L"")); // an empty script, not none
}

TEST_F(NotificationsTest, EditsInPlace)
{
    store.putNotification(L"a", {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
    store.putNotification(L"b", {L"jane", L"1", L"60", L"runner", L"pw", L"3k"});
    store.putNotification(L"c", {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
    visit.edit(1)
        .entry([](HWND entry) {
            EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "b");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_ACCOUNT), "jane");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_RUN_AS), "runner");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_PASSWORD), "pw");
            EXPECT_EQ(controlText(entry, IDC_NOTIFY_MIN_INCREMENT), "3k");
            type(entry, IDC_ENTRY_TEXT, L"B");
            click(entry, IDC_NOTIFY_ANYONE);
            type(entry, IDC_NOTIFY_RUN_AS, L"");
            clickLater(entry, IDOK);
        })
        .list([this](HWND, const ListView& list) {
            EXPECT_EQ(store.takeCalls(),
                      with({"getNotifications 1", "getNAttr 1 0", "getNAttr 1 1", "getNAttr 1 2",
                            "getNAttr 1 3", "getNAttr 1 4", "getNAttr 1 5", "updateNotifications 1 B",
                            "setNAttr 1 0 jane", "setNAttr 1 1 0", "setNAttr 1 2 60", "setNAttr 1 3 null",
                            "setNAttr 1 4 pw", "setNAttr 1 5 3k"},
                           rendering(1)));
            EXPECT_THAT(list.rows(),
                        ElementsAre("c|Anyone|1day(s)|IUSR_VANTREL|0 ", "B|Anyone|1min|IUSR_VANTREL|3072 ",
                                    "a|Anyone|1day(s)|IUSR_VANTREL|0 "));
            EXPECT_THAT(list.allData(), ElementsAre(2, 1, 0));
        })
        .ok();
}

TEST_F(NotificationsTest, ACancelledEntryChangesNothing)
{
    store.putNotification(L"a", {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
    visit.leaveEntries()
        .calls({"getNotifications 0", "getNAttr 0 0", "getNAttr 0 1", "getNAttr 0 2", "getNAttr 0 3",
                "getNAttr 0 4", "getNAttr 0 5"})
        .rows({"a|Anyone|1day(s)|IUSR_VANTREL|0 "})
        .cancel();
    EXPECT_THAT(store.calls(), ElementsAre("freeNotifications"));
}

TEST_F(NotificationsTest, AnEntryDialogThatCannotBeShownIsACancelledOne)
{
    const HiddenDialog entry(IDD_NOTIFICATION_ENTRY);
    store.putNotification(L"a", {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
    visit
        .list([this](HWND dialog, const ListView& list) {
            list.selectOnly({0});
            store.takeCalls();
            click(dialog, IDC_POLICY_ADD);
            EXPECT_THAT(store.takeCalls(), IsEmpty());
            click(dialog, IDC_POLICY_EDIT);
            EXPECT_THAT(store.takeCalls(), testing::Not(testing::Contains(testing::HasSubstr("set"))));
            EXPECT_THAT(list.rows(), ElementsAre("a|Anyone|1day(s)|IUSR_VANTREL|0 "));
        })
        .cancel();
    EXPECT_THAT(store.lines(), IsEmpty());
}

TEST_F(NotificationsTest, SortsByTheColumnThatIsClicked)
{
    store.putNotification(L"1", {kNotSet, L"0", L"0", L"b", kNotSet, L"0"});
    store.putNotification(L"2", {kNotSet, L"0", L"0", L"c", kNotSet, L"0"});
    store.putNotification(L"3", {kNotSet, L"0", L"0", L"a", kNotSet, L"0"});
    visit
        .list([](HWND, const ListView& list) {
            constexpr int kRunAsColumn = 3;
            // The order that a list was sorted in last is the process's: the first click may give either.
            list.clickColumn(kRunAsColumn);
            const std::vector<LPARAM> first = list.allData();
            list.clickColumn(kRunAsColumn);
            EXPECT_THAT((std::vector{first, list.allData()}),
                        testing::UnorderedElementsAre(ElementsAre(2, 0, 1), ElementsAre(1, 0, 2)));
        })
        .cancel();
}

TEST_F(NotificationsTest, KeepsIndexesThroughRemovals)
{
    for (const wchar_t* script : {L"zero", L"one", L"two"}) {
        store.putNotification(script, {kNotSet, L"0", L"0", kNotSet, kNotSet, L"0"});
    }
    visit.remove(1)
        .calls({"removeNotifications 1"})
        .data({2, 0})
        .edit(0)
        .press(IDOK)
        .list([this](HWND, const ListView&) {
            EXPECT_THAT(store.calls(), testing::Contains("updateNotifications 2 two"));
        })
        .cancel();
}

TEST_F(NotificationsTest, CutsEveryFieldAt259Characters)
{
    const std::wstring longText(10000, L'x');
    const std::wstring cut(259, L'x');
    visit.add()
        .entry([&](HWND entry) {
            for (const int field : {IDC_ENTRY_TEXT, IDC_NOTIFY_ACCOUNT, IDC_NOTIFY_RUN_AS,
                                    IDC_NOTIFY_PASSWORD, IDC_NOTIFY_MIN_INCREMENT})
            {
                type(entry, field, longText.c_str());
            }
            clickLater(entry, IDOK);
        })
        .ok();
    EXPECT_THAT(store.scripts.present(), ElementsAre(cut));
    for (const uint32_t attribute : {0u, 3u, 4u, 5u}) {
        EXPECT_EQ(store.attribute(0, attribute), cut);
    }
}

TEST_F(NotificationsTest, AFaultWhileFillingKeepsTheRowsSoFar)
{
    store.putNotification(L"one", {kNotSet, L"0", L"300", kNotSet, kNotSet, L"0"});
    store.putNotification(L"two", {kNotSet, L"0", L"300", kNotSet, kNotSet, L"0"});
    store.raise("getNAttr", Fault::kDivideByZero, 2);
    visit
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(list.rows(), ElementsAre("two|Anyone|5min||", "one|Anyone|5min|IUSR_VANTREL|0 "));
            EXPECT_THAT(store.lines(), ElementsAre("UI CRASH: notflDlg, MyDlgProc, 245\n"));
        })
        .cancel();
}
