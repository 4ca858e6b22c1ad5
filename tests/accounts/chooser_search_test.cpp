// Searching for an account and picking it, from a person's view.
#include "tests/accounts/chooser_test.h"
#include "tests/support/hidden_dialog.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <cstdlib>

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(ChooserTest, SearchingOnACustomBaseStopsThere)
{
    gate.shut();
    startSearch();
    then("look", [this](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDOK), "Add");
        expectEnabled(dialog,
                      {IDOK, IDCANCEL, IDC_CHOOSER_LIST, IDC_CHOOSER_BASE, IDC_CHOOSER_SEARCH,
                       IDC_CHOOSER_TYPE, IDC_CHOOSER_CUSTOM_BASE},
                      false);
        EXPECT_THAT(store.lines(), Not(Contains("onOk\n")));
        gate.open();
    });
    waitForFill();
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.calls(), Contains("enumerateUsers SERVER []"));
}

TEST_F(ChooserTest, SearchingOnTheDefaultBaseGoesOnToThePick)
{
    then("search", [this](HWND dialog) {
        click(dialog, IDOK);
        EXPECT_THAT(store.lines(), Contains("onOk\n"));
        EXPECT_EQ(controlText(dialog, IDOK), "Add");
        expectEnabled(dialog,
                      {IDOK, IDCANCEL, IDC_CHOOSER_LIST, IDC_CHOOSER_BASE, IDC_CHOOSER_SEARCH,
                       IDC_CHOOSER_TYPE, IDC_CHOOSER_CUSTOM_BASE},
                      false);
    });
    waitForFill();
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.lines(), Contains("wcHost := WinNT://(null)\n")) << "the registry decides";
}

TEST_F(ChooserTest, AfterTheFillOnlyTheListAndCancelAreEnabled)
{
    searchServer();
    lookAndCancel([](HWND dialog) {
        expectEnabled(dialog, {IDCANCEL, IDC_CHOOSER_LIST});
        expectEnabled(dialog,
                      {IDOK, IDC_CHOOSER_BASE, IDC_CHOOSER_SEARCH, IDC_CHOOSER_TYPE, IDC_CHOOSER_CUSTOM_BASE,
                       IDC_CHOOSER_NAME},
                      false);
        EXPECT_EQ(focusOf(dialog), list(dialog)) << "the keyboard must not be lost";
    });
}

TEST_F(ChooserTest, TheCloseBoxActsAsCancel)
{
    typeName(L"Anyone");
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    script = {};
    searchServer();
    then("close", [](HWND dialog) { SendMessageW(dialog, WM_CLOSE, 0, 0); });
    EXPECT_EQ(choose(), nullptr);
}

TEST_F(ChooserTest, ShowsAccountsInTheOrderOfTheEnumeration)
{
    giveUsers({"DOM\\bob", "carol"});
    giveGroups({"DOM\\staff"});
    SidList* const owners = RecordingStore::makeSidList({m_alice});
    searchServer();
    lookAndCancel(
        [](HWND dialog) {
            EXPECT_THAT(list(dialog).rows(),
                        ElementsAre("Anyone|Anyone|System", "alice|DOM\\alice|File owner",
                                    "bob|DOM\\bob|User", "carol|carol|User", "staff|DOM\\staff|Group"));
            EXPECT_EQ(list(dialog).data(0), 1);
            EXPECT_EQ(RecordingStore::nameOf(reinterpret_cast<void*>(list(dialog).data(2))), "DOM\\bob");
            constexpr int kGroupImage = 0;
            constexpr int kUserImage = 1;
            std::vector<int> images;
            for (int row = 0; row < 5; ++row) {
                images.push_back(list(dialog).image(row));
            }
            EXPECT_THAT(images, ElementsAre(kGroupImage, kUserImage, kUserImage, kUserImage, kGroupImage));
        },
        owners);
    freeSidList(owners);
}

TEST_F(ChooserTest, ASecondPressTakesTheSelectedRow)
{
    giveUsers({"DOM\\bob", "DOM\\carol"});
    searchServer();
    pick("carol");
    void* const chosen = choose();
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\carol");
    const std::vector<std::string> lines = dialogLines();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[1], "onOk\n");
    EXPECT_EQ(lines[2], "onOk: 2\n");
    EXPECT_EQ(lines[3].substr(0, 14), "\treturn sid = ");
    EXPECT_NE(lines[3], "\treturn sid = " + pointerText(chosen) + "\n")
        << "the row's own, of which a copy is given";
    EXPECT_EQ(lines[4], "\treturned sid = " + pointerText(chosen) + "\n");
    EXPECT_EQ(lines[5],
              "got R1=" + pointerText(reinterpret_cast<void*>(1)) + " " + pointerText(chosen) + "\n");
    std::free(chosen);
}

TEST_F(ChooserTest, PickingAnyoneGives1)
{
    searchServer();
    pick("Anyone");
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    EXPECT_THAT(store.lines(), Contains("\treturn sid = " + pointerText(CORVANE_ANYONE) + "\n"));
}

TEST_F(ChooserTest, PickingAFileOwnerOrAGroupGivesACopy)
{
    giveGroups({"DOM\\staff"});
    SidList* const owners = RecordingStore::makeSidList({m_alice});
    searchServer();
    pick("alice");
    void* chosen = choose(owners);
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\alice");
    EXPECT_NE(chosen, owners->sids[0]);
    std::free(chosen);
    freeSidList(owners);

    script = {};
    searchServer();
    pick("staff");
    chosen = choose();
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\staff");
    std::free(chosen);
}

TEST_F(ChooserTest, TheDefaultButtonWithoutASelectedRowDoesNothing)
{
    searchServer();
    lookAndCancel([this](HWND dialog) {
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_EQ(dialogLines().back(), "onOk\n");
    });
    EXPECT_EQ(threads.started(), 1) << "there is one search";
}

TEST_F(ChooserTest, SelectingDuringTheFillEnablesNothing)
{
    gate.shut();
    startSearch();
    script.step("the first rows", [](HWND dialog) { return list(dialog).rowCount() == 2; });
    then("select", [this](HWND dialog) {
        select(dialog, 1);
        EXPECT_FALSE(isEnabled(dialog, IDOK));
        gate.open();
    });
    waitForFill();
    lookAndCancel([](HWND dialog) {
        EXPECT_FALSE(isEnabled(dialog, IDOK)) << "nothing was selected since";
        ListView_SetItemState(list(dialog), 0, 0, LVIS_SELECTED);
        EXPECT_FALSE(isEnabled(dialog, IDOK));
        select(dialog, 0);
        EXPECT_TRUE(isEnabled(dialog, IDOK));
    });
}

TEST_F(ChooserTest, EachRowNotificationLooksAtTheSelection)
{
    searchServer();
    lookAndCancel([](HWND dialog) {
        select(dialog, 0);
        for (const UINT code : {LVN_ITEMCHANGED, LVN_ITEMACTIVATE, LVN_ODSTATECHANGED}) {
            EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
            NMLISTVIEW notification{};
            notification.hdr = {list(dialog), IDC_CHOOSER_LIST, code};
            SendMessageW(dialog, WM_NOTIFY, IDC_CHOOSER_LIST, reinterpret_cast<LPARAM>(&notification));
            EXPECT_TRUE(isEnabled(dialog, IDOK)) << code;
        }
    });
}

TEST_F(ChooserTest, ARowWithoutAnAccountCannotBeAdded)
{
    searchServer();
    lookAndCancel([](HWND dialog) {
        LVITEMW item{};
        item.mask = LVIF_PARAM;
        SendMessageW(list(dialog), LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        select(dialog, 0);
        EXPECT_FALSE(isEnabled(dialog, IDOK));
    });
}

TEST_F(ChooserTest, CancelForgetsWhatWasChosenBefore)
{
    typeName(L"Anyone");
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    script = {};
    cancel();
    EXPECT_EQ(choose(), nullptr);
    const HiddenDialog all;
    EXPECT_EQ(chooseSidFromUserInput(nullptr), nullptr);
}

TEST_F(ChooserTest, AThreadThatCannotBeStartedCountsAsAnEmptyFill)
{
    const ImportPatch noThread(
        ImportPatch::corvane(), "_beginthread",
        +[](void(__cdecl*)(void*), unsigned, void*) -> std::uintptr_t {
            return static_cast<std::uintptr_t>(-1);
        });
    ASSERT_EQ(noThread.count(), 1);
    searchServer();
    lookAndCancel([](HWND dialog) {
        EXPECT_EQ(list(dialog).rowCount(), 0);
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_LIST));
    });
}
