// The radio buttons and check boxes of the Quota Settings dialog.
#include "tests/quota/quota_settings.h"
#include "tests/support/windows_radios.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::IsEmpty;

namespace {

class SettingsChoicesTest : public testing::Test {
protected:
    RecordingStore store;
    void* const alice = store.account("SALES\\alice");
    void SetUp() override
    {
        folderHolds(store, 300);
        accountOwns(store, 20);
    }
};

} // namespace

TEST_F(SettingsChoicesTest, NoFilesCountNothing)
{
    QuotaRule* const rule = newRule();
    whileOpen(rule, kAdd, [rule](HWND dialog) {
        click(dialog, kNoFiles);
        EXPECT_EQ(rule->inUse, 0);
        EXPECT_EQ(controlText(dialog, kInUse), "0 ");
        EXPECT_EQ(controlText(dialog, kObjectSize), "300 ");
    });
    EXPECT_EQ(rule->inUse, 0);
}

TEST_F(SettingsChoicesTest, AllFilesCountTheFolder)
{
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kAdd, [rule](HWND dialog) {
        EXPECT_EQ(rule->inUse, 20);
        click(dialog, kAllFiles);
        EXPECT_EQ(rule->inUse, 300);
        EXPECT_EQ(controlText(dialog, kInUse), "300 ");
    });
}

TEST_F(SettingsChoicesTest, OwnedFilesCountTheAccounts)
{
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kAdd, [rule](HWND dialog) {
        click(dialog, kAllFiles);
        click(dialog, kOwnedFiles);
        EXPECT_EQ(rule->inUse, 20);
        EXPECT_EQ(controlText(dialog, kInUse), "20 ");
    });
}

TEST_F(SettingsChoicesTest, OwnedFilesCountNothingWhenTheyWereNotMeasured)
{
    QuotaRule* const rule = newRule(alice);
    rule->inUse = 77;
    whileOpen(rule, kAdd, [rule](HWND dialog) {
        click(dialog, kOwnedFiles);
        EXPECT_EQ(rule->inUse, 0);
    });
}

TEST_F(SettingsChoicesTest, PassingByWithTheTabKeyChoosesNothing)
{
    const WindowsRadios radios;
    QuotaRule* const unchecked = newRule(alice);
    unchecked->inUse = 77;
    whileOpen(unchecked, kAdd, [](HWND dialog) { EXPECT_EQ(tabThrough(dialog), 1); });
    EXPECT_EQ(unchecked->inUse, 77);
    QuotaRule* const owned = newRule(alice);
    whileOpen(owned, kAdd, [](HWND dialog) { EXPECT_EQ(tabThrough(dialog), 1); });
    EXPECT_EQ(owned->inUse, 20);
    EXPECT_EQ(WindowsRadios::clicks(), 0);
}

// Where the button only tells, without checking itself, and cannot be told not to.
TEST_F(SettingsChoicesTest, AButtonThatOnlyTellsOfTheKeyboardChoosesNothing)
{
    QuotaRule* const unchecked = newRule(alice);
    unchecked->inUse = 77;
    whileOpen(unchecked, kAdd, [](HWND dialog) {
        for (const int button : {kNoFiles, kOwnedFiles, kAllFiles}) {
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                         reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
        }
    });
    EXPECT_EQ(unchecked->inUse, 77);
}

TEST_F(SettingsChoicesTest, ExcludeEachOther)
{
    whileOpen(newRule(alice), kAdd, [](HWND dialog) {
        for (const int chosen : {kNoFiles, kOwnedFiles, kAllFiles}) {
            click(dialog, chosen);
            for (const int each : {kNoFiles, kOwnedFiles, kAllFiles}) {
                EXPECT_EQ(isChecked(dialog, each), each == chosen);
            }
        }
    });
}

TEST_F(SettingsChoicesTest, AnyNotificationOfARadioButtonCounts)
{
    QuotaRule* const rule = newRule();
    rule->inUse = 5;
    constexpr WORD kAnyCode = 99;
    for (const int button : {kNoFiles, kOwnedFiles, kAllFiles}) {
        whileOpen(rule, kAdd, [=](HWND dialog) {
            rule->inUse = 5;
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, kAnyCode), 0);
            EXPECT_EQ(rule->inUse, 300) << "all files are chosen, whichever button tells";
        });
    }
}

TEST_F(SettingsChoicesTest, StoreIsNotAskedAgain)
{
    whileOpen(newRule(alice), kAdd, [this](HWND dialog) {
        store.takeCalls();
        click(dialog, kAllFiles);
        click(dialog, kNoFiles);
        click(dialog, kOwnedFiles);
        click(dialog, kAllowBelow);
        EXPECT_THAT(store.calls(), IsEmpty());
    });
}

TEST_F(SettingsChoicesTest, NewMembersFollowMembers)
{
    groupHas(store, {alice});
    whileOpen(newRule(store.account("everybody")), kAdd, [](HWND dialog) {
        click(dialog, kGroupMembers);
        EXPECT_TRUE(isChecked(dialog, kGroupMembers));
        EXPECT_TRUE(isEnabled(dialog, kNewMembers));
        click(dialog, kNewMembers);
        EXPECT_TRUE(isChecked(dialog, kNewMembers));
        click(dialog, kGroupMembers);
        EXPECT_FALSE(isEnabled(dialog, kNewMembers));
        click(dialog, kGroupMembers);
        EXPECT_TRUE(isEnabled(dialog, kNewMembers));
    });
}

TEST_F(SettingsChoicesTest, ChangesStayAfterCancel)
{
    QuotaRule* const rule = newRule(alice);
    const intptr_t result = whileOpen(rule, kAdd, [](HWND dialog) {
        click(dialog, kAllFiles);
        typeLimits(dialog, L"7K", L"5K");
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(rule->inUse, 300);
    EXPECT_EQ(rule->hardLimit, 104857600);
    EXPECT_EQ(rule->softLimit, 99614720);
}
