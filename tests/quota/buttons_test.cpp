// Enabling buttons, and the button helpers.
#include "tests/quota/rule_list_test.h"

#include "tests/support/message_watch.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <string>

namespace {

struct ButtonsTest : RuleListTest {
    void SetUp() override
    {
        prepare();
        for (int id = 1; id <= 12; ++id) {
            host.addControl(id);
        }
        host.addRow(1, {L"a"});
        host.addRow(2, {L"b"});
    }

    /// The controls 1 to 12: E enabled, - disabled.
    std::string states() const
    {
        std::string text;
        for (int id = 1; id <= 12; ++id) {
            text += IsWindowEnabled(GetDlgItem(host.window(), id)) ? 'E' : '-';
        }
        return text;
    }
};

} // namespace

TEST_F(ButtonsTest, NothingSelectedDisablesThoseListed)
{
    checkForButtons(host.window(), ListHost::kListId, 2, 3, 5, 0);
    EXPECT_EQ(states(), "E--E-EEEEEEE");
}

TEST_F(ButtonsTest, ASelectedRowEnablesThoseListed)
{
    checkForButtons(host.window(), ListHost::kListId, 2, 3, 5, 0);
    host.select(1);
    checkForButtons(host.window(), ListHost::kListId, 3, 5, 0);
    EXPECT_EQ(states(), "E-EEEEEEEEEE");
}

TEST_F(ButtonsTest, TheFocusAloneIsNoSelection)
{
    host.focus(0);
    checkForButtons(host.window(), ListHost::kListId, 1, 0);
    EXPECT_EQ(states(), "-EEEEEEEEEEE");
}

TEST_F(ButtonsTest, AnyNumberOfControls)
{
    checkForButtons(host.window(), ListHost::kListId, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0);
    EXPECT_EQ(states(), "-----------E");
    checkForButtons(host.window(), ListHost::kListId, 0);
    EXPECT_EQ(states(), "-----------E");
}

TEST_F(ButtonsTest, ByListObject)
{
    checkForButtons2(host.window(), host.object(), 1, 2, 3, 4, 5, 6, 0);
    EXPECT_EQ(states(), "------EEEEEE");
    host.select(0);
    checkForButtons2(host.window(), host.object(), 6, 0);
    EXPECT_EQ(states(), "-----EEEEEEE");
}

TEST_F(ButtonsTest, NumbersAreTheLowHalfOfTheirSlot)
{
    constexpr long long kRubbish = 0x7654321000000000;
    checkForButtons(host.window(), ListHost::kListId, kRubbish + 2, kRubbish + 4, kRubbish, 6, 0);
    EXPECT_EQ(states(), "E-E-EEEEEEEE");
    checkForButtons2(host.window(), host.object(), kRubbish + 1, kRubbish + 7, kRubbish + 8, kRubbish + 9,
                     kRubbish);
    EXPECT_EQ(states(), "--E-EE---EEE");
}

TEST_F(ButtonsTest, WhatIsNoListCountsAsSelected)
{
    checkForButtons(host.window(), ListHost::kListId, 2, 3, 0);
    for (const int noList : {500, 4}) {
        checkForButtons(host.window(), noList, 2, 0);
        EXPECT_TRUE(IsWindowEnabled(GetDlgItem(host.window(), 2))) << noList;
        checkForButtons(host.window(), ListHost::kListId, 2, 0);
    }
    CorvaneListObject none{};
    checkForButtons2(host.window(), reinterpret_cast<CListCtrl*>(&none), 3, 0);
    EXPECT_EQ(states(), "E-EEEEEEEEEE");
}

TEST_F(ButtonsTest, AnEmptyListHasNothingSelected)
{
    ListView_DeleteAllItems(host.list());
    checkForButtons(host.window(), ListHost::kListId, 2, 0);
    EXPECT_EQ(states(), "E-EEEEEEEEEE");
}

TEST_F(ButtonsTest, TheRowsAreNotGoneThrough)
{
    for (int i = 3; i < 100; ++i) {
        host.addRow(i, {L"more"});
    }
    int rowsLookedAt = 0;
    const MessageWatch watch(host.list(), [&](UINT message, WPARAM from, LPARAM) {
        if (message == LVM_GETNEXTITEM) {
            rowsLookedAt += host.rowCount() - 1 - static_cast<int>(from);
        }
    });
    checkForButtons(host.window(), ListHost::kListId, 2, 0);
    host.select(98);
    checkForButtons(host.window(), ListHost::kListId, 3, 0);
    EXPECT_EQ(rowsLookedAt, 0);
    EXPECT_EQ(states(), "E-EEEEEEEEEE");
}

TEST_F(ButtonsTest, AMissingControlIsPassedOver)
{
    checkForButtons(host.window(), ListHost::kListId, 500, 1, 0);
    EXPECT_EQ(states(), "-EEEEEEEEEEE");
}

TEST_F(ButtonsTest, StateIsReadAndSetAsItIs)
{
    host.addControl(20, L"BUTTON", BS_3STATE);
    EXPECT_EQ(getButtonState(host.window(), 20), BST_UNCHECKED);
    for (const int state : {BST_CHECKED, BST_INDETERMINATE, BST_UNCHECKED}) {
        setButtonState(host.window(), 20, state);
        EXPECT_EQ(getButtonState(host.window(), 20), state);
        EXPECT_EQ(SendDlgItemMessageW(host.window(), 20, BM_GETCHECK, 0, 0), state);
    }
}

TEST_F(ButtonsTest, AMissingButtonHasStateZero)
{
    EXPECT_EQ(getButtonState(host.window(), 500), 0);
    setButtonState(host.window(), 500, BST_CHECKED);
    setButtonIcon(host.window(), 500, nullptr);
}

TEST_F(ButtonsTest, IconIsShown)
{
    host.addControl(21, L"BUTTON", BS_ICON);
    const HICON icon = LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_ERROR));
    ASSERT_NE(icon, nullptr);
    setButtonIcon(host.window(), 21, icon);
    EXPECT_EQ(reinterpret_cast<HICON>(SendDlgItemMessageW(host.window(), 21, BM_GETIMAGE, IMAGE_ICON, 0)),
              icon);
    setButtonIcon(host.window(), 21, nullptr);
    EXPECT_EQ(SendDlgItemMessageW(host.window(), 21, BM_GETIMAGE, IMAGE_ICON, 0), 0);
}
