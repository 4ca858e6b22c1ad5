// What the Quota Settings dialog does when it opens.
#include "quota/limits.h"
#include "res/resource.h"
#include "tests/quota/quota_settings.h"

#include <gmock/gmock.h>

#include <limits>
#include <optional>
#include <ostream>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct SettingsOpenTest : testing::Test {
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
    whileOpen(newRule(), kAdd);
    EXPECT_THAT(store.calls(), ElementsAre("getRealSize C:\\data"));
}

TEST_F(SettingsOpenTest, AsksTheStoreForAnAccountInThisOrder)
{
    whileOpen(newRule(alice), kAdd);
    EXPECT_EQ(store.calls(), callsForAccount("SALES\\alice"));
    EXPECT_EQ(store.openSidLists(), 0);
}

TEST_F(SettingsOpenTest, DoesNotMeasureAnAccountThatWasMeasuredBefore)
{
    QuotaRule* const rule = newRule(alice);
    rule->inUse = 0;
    whileOpen(rule, kAdd);
    EXPECT_THAT(store.calls(), ElementsAre("getAccountBySidW SALES\\alice 128", "getRealSize C:\\data",
                                           "getAccountBySidW SALES\\alice 128",
                                           "enumerateGroupUsers null SALES\\alice null"));
}

TEST_F(SettingsOpenTest, DoesNotAskForMembersWhenEditing)
{
    QuotaRule* const rule = newRule(alice);
    rule->inUse = 5;
    whileOpen(rule, kEdit);
    EXPECT_THAT(store.calls(), ElementsAre("getAccountBySidW SALES\\alice 128", "getRealSize C:\\data"));
}

namespace {

constexpr int64_t kMost = std::numeric_limits<int64_t>::max();

/// A rule, what the store measures, and what the dialog makes of them.
struct Opening {
    const char* name;
    Limits given;  ///< of the rule
    int64_t inUse; ///< of the rule
    int64_t folder;
    std::optional<int64_t> owned; ///< by the rule's account; none: the rule is for anyone
    int mode;
    const char* shown;
    int files;
    Limits limits; ///< of the rule afterwards
    int64_t inUseThen;
};

std::ostream& operator<<(std::ostream& out, const Opening& opening)
{
    return out << opening.name;
}

struct SettingsOpeningTest : SettingsOpenTest, testing::WithParamInterface<Opening> {};

constexpr Limits kNoLimits = {-1, -1};
constexpr int64_t kUnknown = QUOTA_IN_USE_UNKNOWN;
constexpr int kNone = 0;
constexpr int kAll = IDC_QUOTA_ALL_FILES;
constexpr int kOwned = IDC_QUOTA_OWNED_FILES;

} // namespace

// clang-format off
INSTANTIATE_TEST_SUITE_P(Rules, SettingsOpeningTest, testing::Values(
    Opening{"AnyoneCountsTheWholeFolder", kNoLimits, kUnknown, 3 * kMiB, {}, kAdd,
            "3072K|3072K|15360K|14592K", kAll, {15 * kMiB, 15 * kMiB - 15 * kMiB / 20}, 3 * kMiB},
    Opening{"AnAccountCountsOwnedFiles", kNoLimits, kUnknown, 3 * kMiB, kMiB, kAdd,
            "3072K|1048576 |15360K|14592K", kOwned, {15 * kMiB, 15 * kMiB - 15 * kMiB / 20}, kMiB},
    Opening{"AnAccountIsMeasuredWhenEditingToo", kNoLimits, kUnknown, 100, 40, kEdit,
            "100 |40 |102400K|97280K", kNone, {104857600, 99614720}, 40},
    Opening{"AnyoneMeasuredBeforeStillCountsAllFiles", kNoLimits, 7, 100, {}, kAdd,
            "100 |7 |102400K|97280K", kAll, {104857600, 99614720}, 7},
    Opening{"AnAccountMeasuredBeforeCountsNothing", kNoLimits, 0, 0, 5, kAdd,
            "0 |0 |102400K|97280K", kNone, {104857600, 99614720}, 0},
    Opening{"ASizeOfMinusOneIsZero", kNoLimits, kUnknown, -1, {}, kAdd,
            "0 |0 |102400K|97280K", kAll, {104857600, 99614720}, 0},
    Opening{"ANegativeSizeIsZero", kNoLimits, kUnknown, -12345, {}, kAdd,
            "0 |0 |102400K|97280K", kAll, {104857600, 99614720}, 0},
    Opening{"ANegativeSizeByOwnerIsKept", kNoLimits, kUnknown, 0, -7, kAdd,
            "0 |-7 |102400K|97280K", kOwned, {104857600, 99614720}, -7},
    Opening{"AnEmptyFolderGetsAHundredMegabytes", kNoLimits, kUnknown, 0, {}, kAdd,
            "0 |0 |102400K|97280K", kAll, {104857600, 99614720}, 0},
    Opening{"OneMegabyteGetsAHundredMegabytes", kNoLimits, kUnknown, 1048576, {}, kAdd,
            "1048576 |1048576 |102400K|97280K", kAll, {104857600, 99614720}, 1048576},
    Opening{"JustAboveOneMegabyteGetsFiveTimesItsSize", kNoLimits, kUnknown, 1048577, {}, kAdd,
            "1024K|1024K|5120K|4864K", kAll, {5242885, 5242885 - 262144}, 1048577},
    Opening{"AnAccountToo", kNoLimits, kUnknown, 3 * kMiB, 2 * kMiB, kAdd,
            "3072K|2048K|15360K|14592K", kOwned, {15 * kMiB, 15 * kMiB - 15 * kMiB / 20}, 2 * kMiB},
    Opening{"LimitsThatAreSetStay", {1, 2}, kUnknown, 3 * kMiB, {}, kAdd,
            "3072K|3072K|1 |2 ", kAll, {1, 2}, 3 * kMiB},
    Opening{"AZeroSoftLimitIsNotSet", {2000, 0}, kUnknown, 0, {}, kEdit,
            "0 |0 |2000 |1900 ", kNone, {2000, 1900}, 0},
    Opening{"AZeroHardLimitIsNotSet", {0, 5}, kUnknown, 0, {}, kEdit,
            "0 |0 |102400K|5 ", kNone, {104857600, 5}, 0},
    // After five divisions there is no letter left.
    Opening{"TheLongestSizes", {kMost, 1}, kUnknown, kMost, {}, kAdd,
            "8191|8191|8191|1 ", kAll, {kMost, 1}, kMost}),
    testing::PrintToStringParamName());
// clang-format on

TEST_P(SettingsOpeningTest, ShowsAndProposes)
{
    const Opening& opening = GetParam();
    folderHolds(store, opening.folder);
    accountOwns(store, opening.owned.value_or(0));
    QuotaRule* const rule = newRule(opening.owned ? alice : nullptr);
    rule->inUse = opening.inUse;
    rule->hardLimit = opening.given.hard;
    rule->softLimit = opening.given.soft;
    whileOpen(rule, opening.mode, [&](HWND dialog) {
        EXPECT_EQ(sizes(dialog), opening.shown);
        if (opening.mode == kAdd) { // the other template does not have them
            EXPECT_EQ(countedFiles(dialog), opening.files);
            EXPECT_EQ(isEnabled(dialog, IDC_QUOTA_OWNED_FILES), opening.owned.has_value());
        }
    });
    EXPECT_EQ(rule->inUse, opening.inUseThen);
    EXPECT_EQ(rule->hardLimit, opening.limits.hard);
    EXPECT_EQ(rule->softLimit, opening.limits.soft);
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
    whileOpen(newRule(alice), kAdd);
    EXPECT_THAT(store.lines(), IsEmpty());
}

TEST_F(SettingsOpenTest, PutsTheFocusOnTheFirstFieldToFill)
{
    for (const int mode : {kAdd, kEdit}) {
        whileOpen(newRule(), mode,
                  [](HWND dialog) { EXPECT_EQ(focusOf(dialog), GetDlgItem(dialog, IDC_QUOTA_SOFT_LIMIT)); });
    }
}
