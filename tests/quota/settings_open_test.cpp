// What the Quota Settings dialog does when it opens.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"

#include <gmock/gmock.h>

#include <limits>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SettingsOpenTest : public testing::Test {
protected:
    RecordingStore store;
    void* const alice = store.account("SALES\\alice");
};

} // namespace

TEST_F(SettingsOpenTest, ShowsFolderAndAnyone)
{
    whileOpen(newRule(), kAdd, [](HWND dialog) {
        EXPECT_EQ(windowText(dialog), "Quota Settings");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_APPLIED_TO), "C:\\data");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_CREDENTIALS), "Anyone");
    });
}

TEST_F(SettingsOpenTest, ShowsTheAccountsName)
{
    whileOpen(newRule(alice), kAdd,
              [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_QUOTA_CREDENTIALS), "SALES\\alice"); });
}

TEST_F(SettingsOpenTest, ShowsAnEmptyNameForAnUnknownAccount)
{
    whileOpen(newRule(store.unknownAccount()), kAdd,
              [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_QUOTA_CREDENTIALS), ""); });
}

TEST_F(SettingsOpenTest, AsksTheStoreForAnyone)
{
    whileOpen(newRule(), kAdd, [](HWND) {});
    EXPECT_THAT(store.calls(), ElementsAre("getRealSize C:\\data"));
}

TEST_F(SettingsOpenTest, AsksTheStoreForAnAccountInThisOrder)
{
    whileOpen(newRule(alice), kAdd, [](HWND) {});
    EXPECT_THAT(store.calls(),
                ElementsAre("getAccountBySidW SALES\\alice 128", "getRealSize C:\\data", "createEmptySidList",
                            "sidDup SALES\\alice", "appendToSidList [] SALES\\alice",
                            "getRealSizeByOwner C:\\data [SALES\\alice]", "freeSidList [SALES\\alice]",
                            "getAccountBySidW SALES\\alice 128",
                            "enumerateGroupUsers null SALES\\alice null"));
    EXPECT_EQ(store.openSidLists(), 0);
}

TEST_F(SettingsOpenTest, DoesNotMeasureAnAccountThatWasMeasuredBefore)
{
    QuotaRule* const rule = newRule(alice);
    rule->inUse = 0;
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "0 ");
        EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_OWNED_FILES));
    });
    EXPECT_THAT(store.calls(), ElementsAre("getAccountBySidW SALES\\alice 128", "getRealSize C:\\data",
                                           "getAccountBySidW SALES\\alice 128",
                                           "enumerateGroupUsers null SALES\\alice null"));
}

TEST_F(SettingsOpenTest, DoesNotAskForMembersWhenEditing)
{
    QuotaRule* const rule = newRule(alice);
    rule->inUse = 5;
    whileOpen(rule, kEdit, [](HWND) {});
    EXPECT_THAT(store.calls(), ElementsAre("getAccountBySidW SALES\\alice 128", "getRealSize C:\\data"));
}

TEST_F(SettingsOpenTest, MeasuresAnAccountWhenEditingToo)
{
    folderHolds(store, 100);
    accountOwns(store, 40);
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kEdit, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "100 ");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "40 ");
    });
    EXPECT_EQ(rule->inUse, 40);
}

TEST_F(SettingsOpenTest, CountsTheWholeFolderForAnyone)
{
    folderHolds(store, 3 * kMiB);
    QuotaRule* const rule = newRule();
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "3072K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "3072K");
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_ALL_FILES));
        EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_OWNED_FILES));
        EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_NO_FILES));
        EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_OWNED_FILES));
    });
    EXPECT_EQ(rule->inUse, 3 * kMiB);
}

TEST_F(SettingsOpenTest, CountsOwnedFilesForAnAccount)
{
    folderHolds(store, 3 * kMiB);
    accountOwns(store, kMiB);
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "3072K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "1048576 ");
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_OWNED_FILES));
        EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_ALL_FILES));
        EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_NO_FILES));
        EXPECT_TRUE(isEnabled(dialog, IDC_QUOTA_OWNED_FILES));
    });
    EXPECT_EQ(rule->inUse, kMiB);
}

TEST_F(SettingsOpenTest, ChecksAllFilesForAnyoneThoughMeasuredBefore)
{
    folderHolds(store, 100);
    QuotaRule* const rule = newRule();
    rule->inUse = 7;
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "7 ");
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_ALL_FILES));
        EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_OWNED_FILES));
    });
    EXPECT_EQ(rule->inUse, 7);
}

TEST_F(SettingsOpenTest, TakesANegativeSizeAsZero)
{
    for (const int64_t size : {-1, -12345}) {
        folderHolds(store, size);
        QuotaRule* const rule = newRule();
        whileOpen(rule, kAdd, [](HWND dialog) {
            EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "0 ");
            EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "0 ");
        });
        EXPECT_EQ(rule->inUse, 0);
    }
}

TEST_F(SettingsOpenTest, KeepsANegativeSizeByOwner)
{
    accountOwns(store, -7);
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kAdd, [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "-7 "); });
    EXPECT_EQ(rule->inUse, -7);
}

TEST_F(SettingsOpenTest, ProposesLimitsFromTheFoldersSize)
{
    folderHolds(store, 3 * kMiB);
    QuotaRule* const rule = newRule();
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "15360K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_SOFT_LIMIT), "14592K");
    });
    EXPECT_EQ(rule->hardLimit, 15 * kMiB);
    EXPECT_EQ(rule->softLimit, 15 * kMiB - 15 * kMiB / 20);
}

TEST_F(SettingsOpenTest, ProposesAHundredMegabytesForAnEmptyFolder)
{
    QuotaRule* const rule = newRule();
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "102400K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_SOFT_LIMIT), "97280K");
    });
    EXPECT_EQ(rule->hardLimit, 104857600);
    EXPECT_EQ(rule->softLimit, 99614720);
}

TEST_F(SettingsOpenTest, ProposesAHundredMegabytesUpToOneMegabyte)
{
    folderHolds(store, 1048576);
    QuotaRule* const rule = newRule();
    whileOpen(rule, kAdd, [](HWND) {});
    EXPECT_EQ(rule->hardLimit, 104857600);
}

TEST_F(SettingsOpenTest, ProposesFiveTimesTheSizeJustAboveOneMegabyte)
{
    folderHolds(store, 1048577);
    QuotaRule* const rule = newRule();
    whileOpen(rule, kAdd, [](HWND) {});
    EXPECT_EQ(rule->hardLimit, 5242885);
    EXPECT_EQ(rule->softLimit, 5242885 - 262144);
}

TEST_F(SettingsOpenTest, ProposesFromTheFoldersSizeForAnAccountToo)
{
    folderHolds(store, 3 * kMiB);
    accountOwns(store, 2 * kMiB);
    QuotaRule* const rule = newRule(alice);
    whileOpen(rule, kAdd, [](HWND) {});
    EXPECT_EQ(rule->hardLimit, 15 * kMiB);
}

TEST_F(SettingsOpenTest, KeepsLimitsThatAreSet)
{
    folderHolds(store, 3 * kMiB);
    QuotaRule* const rule = newRule();
    rule->hardLimit = 1;
    rule->softLimit = 2;
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "1 ");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_SOFT_LIMIT), "2 ");
    });
    EXPECT_EQ(rule->hardLimit, 1);
    EXPECT_EQ(rule->softLimit, 2);
}

TEST_F(SettingsOpenTest, TakesAZeroLimitAsNotSet)
{
    QuotaRule* const rule = newRule();
    rule->hardLimit = 2000;
    rule->softLimit = 0;
    whileOpen(rule, kEdit,
              [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_QUOTA_SOFT_LIMIT), "1900 "); });
    EXPECT_EQ(rule->hardLimit, 2000);
    EXPECT_EQ(rule->softLimit, 1900);
    rule->hardLimit = 0;
    rule->softLimit = 5;
    whileOpen(rule, kEdit,
              [](HWND dialog) { EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "102400K"); });
    EXPECT_EQ(rule->softLimit, 5);
}

TEST_F(SettingsOpenTest, LeavesMembersOffWithoutAGroup)
{
    for (QuotaRule* const rule : {newRule(), newRule(alice)}) {
        whileOpen(rule, kAdd, [](HWND dialog) {
            EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_GROUP_MEMBERS));
            EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_NEW_MEMBERS));
            EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_GROUP_MEMBERS));
            EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_NEW_MEMBERS));
        });
    }
}

TEST_F(SettingsOpenTest, OffersMembersOfAGroup)
{
    groupHas(store, {alice});
    whileOpen(newRule(store.account("SALES\\everybody")), kAdd, [](HWND dialog) {
        EXPECT_TRUE(isEnabled(dialog, IDC_QUOTA_GROUP_MEMBERS));
        EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_NEW_MEMBERS));
        EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_GROUP_MEMBERS));
    });
}

TEST_F(SettingsOpenTest, OffersNoMembersOfAnEmptyGroup)
{
    groupHas(store, {});
    whileOpen(newRule(alice), kAdd,
              [](HWND dialog) { EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_GROUP_MEMBERS)); });
}

TEST_F(SettingsOpenTest, ReleasesTheMembersAtTheEnd)
{
    groupHas(store, {alice});
    void* const group = store.account("SALES\\everybody");
    whileOpen(newRule(group), kAdd, [this](HWND) {
        EXPECT_EQ(store.openSidLists(), 1);
        store.takeCalls();
    });
    EXPECT_THAT(store.calls(), ElementsAre("freeSidList [SALES\\alice]"));
    EXPECT_EQ(store.openSidLists(), 0);
}

TEST_F(SettingsOpenTest, WritesNoLine)
{
    whileOpen(newRule(alice), kAdd, [](HWND) {});
    EXPECT_THAT(store.lines(), IsEmpty());
}

TEST_F(SettingsOpenTest, PutsTheFocusOnTheFirstFieldToFill)
{
    for (const int mode : {kAdd, kEdit}) {
        whileOpen(newRule(), mode,
                  [](HWND dialog) { EXPECT_EQ(focusOf(dialog), GetDlgItem(dialog, IDC_QUOTA_SOFT_LIMIT)); });
    }
}

TEST_F(SettingsOpenTest, ShowsTheLongestSizes)
{
    folderHolds(store, std::numeric_limits<int64_t>::max());
    QuotaRule* const rule = newRule();
    rule->hardLimit = std::numeric_limits<int64_t>::max();
    rule->softLimit = 1;
    whileOpen(rule, kAdd, [](HWND dialog) {
        // After five divisions there is no letter left.
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "8191");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "8191");
    });
}
