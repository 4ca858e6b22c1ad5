// The radio buttons and check boxes of the Quota Settings dialog.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/windows_radios.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::IsEmpty;

namespace {

struct SettingsChoicesTest : testing::Test {
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
        click(dialog, IDC_QUOTA_NO_FILES);
        EXPECT_EQ(rule->inUse, 0);
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "0 ");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "300 ");
    });
    EXPECT_EQ(rule->inUse, 0);
}

TEST_F(SettingsChoicesTest, AllFilesCountTheFolder)
{
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kAdd, [rule](HWND dialog) {
        EXPECT_EQ(rule->inUse, 20);
        click(dialog, IDC_QUOTA_ALL_FILES);
        EXPECT_EQ(rule->inUse, 300);
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "300 ");
    });
}

TEST_F(SettingsChoicesTest, OwnedFilesCountTheAccounts)
{
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kAdd, [rule](HWND dialog) {
        click(dialog, IDC_QUOTA_ALL_FILES);
        click(dialog, IDC_QUOTA_OWNED_FILES);
        EXPECT_EQ(rule->inUse, 20);
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "20 ");
    });
}

TEST_F(SettingsChoicesTest, OwnedFilesCountNothingWhenTheyWereNotMeasured)
{
    QuotaRule* const rule = newRule(alice);
    rule->inUse = 77;
    whileOpen(rule, kAdd, [rule](HWND dialog) {
        click(dialog, IDC_QUOTA_OWNED_FILES);
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
        for (const int button : {IDC_QUOTA_NO_FILES, IDC_QUOTA_OWNED_FILES, IDC_QUOTA_ALL_FILES}) {
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                         reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
        }
    });
    EXPECT_EQ(unchecked->inUse, 77);
}

TEST_F(SettingsChoicesTest, ExcludeEachOther)
{
    whileOpen(newRule(alice), kAdd, [](HWND dialog) {
        for (const int chosen : {IDC_QUOTA_NO_FILES, IDC_QUOTA_OWNED_FILES, IDC_QUOTA_ALL_FILES}) {
            click(dialog, chosen);
            for (const int each : {IDC_QUOTA_NO_FILES, IDC_QUOTA_OWNED_FILES, IDC_QUOTA_ALL_FILES}) {
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
    for (const int button : {IDC_QUOTA_NO_FILES, IDC_QUOTA_OWNED_FILES, IDC_QUOTA_ALL_FILES}) {
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
        click(dialog, IDC_QUOTA_ALL_FILES);
        click(dialog, IDC_QUOTA_NO_FILES);
        click(dialog, IDC_QUOTA_OWNED_FILES);
        click(dialog, IDC_QUOTA_ALLOW_BELOW);
        EXPECT_THAT(store.calls(), IsEmpty());
    });
}

TEST_F(SettingsChoicesTest, NewMembersFollowMembers)
{
    groupHas(store, {alice});
    whileOpen(newRule(store.account("everybody")), kAdd, [](HWND dialog) {
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_GROUP_MEMBERS));
        EXPECT_TRUE(isEnabled(dialog, IDC_QUOTA_NEW_MEMBERS));
        click(dialog, IDC_QUOTA_NEW_MEMBERS);
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_NEW_MEMBERS));
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_NEW_MEMBERS));
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        EXPECT_TRUE(isEnabled(dialog, IDC_QUOTA_NEW_MEMBERS));
    });
}

TEST_F(SettingsChoicesTest, ChangesStayAfterCancel)
{
    QuotaRule* const rule = newRule(alice);
    const intptr_t result = whileOpen(rule, kAdd, [](HWND dialog) {
        click(dialog, IDC_QUOTA_ALL_FILES);
        typeLimits(dialog, L"7K", L"5K");
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(rule->inUse, 300);
    EXPECT_EQ(rule->hardLimit, 104857600);
    EXPECT_EQ(rule->softLimit, 99614720);
}
