// OK and Cancel of the Quota Settings dialog.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"

#include <gmock/gmock.h>

#include <ostream>

using namespace quota_settings;
using testing::IsEmpty;

namespace {

struct SettingsOkTest : testing::Test {
    RecordingStore store;
    void* const alice = store.account("SALES\\alice");

    /// OK with these texts is accepted and gives these limits.
    void expectAccepted(QuotaRule* rule, int mode, const wchar_t* hard, const wchar_t* soft,
                        int64_t hardLimit, int64_t softLimit, const DialogScript::Act& before = clicks({}))
    {
        const intptr_t result = untilOk(rule, mode, [&](HWND dialog) {
            before(dialog);
            typeLimits(dialog, hard, soft);
        });
        EXPECT_EQ(result, reinterpret_cast<intptr_t>(rule));
        EXPECT_EQ(rule->hardLimit, hardLimit);
        EXPECT_EQ(rule->softLimit, softLimit);
    }

    /// OK with these texts is refused, and the record has these limits all the same.
    void expectRefused(QuotaRule* rule, int mode, const wchar_t* hard, const wchar_t* soft, int64_t hardLimit,
                       int64_t softLimit, const DialogScript::Act& before = clicks({}))
    {
        std::string typedHard;
        std::string typedSoft;
        const intptr_t result = untilRefused(
            rule, mode,
            [&](HWND dialog) {
                before(dialog);
                typeLimits(dialog, hard, soft);
                typedHard = controlText(dialog, IDC_QUOTA_HARD_LIMIT);
                typedSoft = controlText(dialog, IDC_QUOTA_SOFT_LIMIT);
            },
            [&](HWND dialog) {
                EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), typedHard);
                EXPECT_EQ(controlText(dialog, IDC_QUOTA_SOFT_LIMIT), typedSoft);
                EXPECT_EQ(rule->hardLimit, hardLimit);
                EXPECT_EQ(rule->softLimit, softLimit);
            });
        EXPECT_EQ(result, 0);
        EXPECT_EQ(rule->hardLimit, hardLimit);
        EXPECT_EQ(rule->softLimit, softLimit);
    }
};

} // namespace

TEST_F(SettingsOkTest, TakesWhatIsTyped)
{
    for (const int mode : {kAdd, kEdit}) {
        expectAccepted(newRule(), mode, L"200M", L"100m", 200 * kMiB, 100 * kMiB);
        expectAccepted(newRule(alice), mode, L"2G", L"1500000", 2 * kGiB, 1500000);
    }
}

TEST_F(SettingsOkTest, TakesTheProposalAsItStands)
{
    folderHolds(store, 3 * kMiB);
    QuotaRule* const rule = newRule();
    EXPECT_EQ(untilOk(rule, kAdd), reinterpret_cast<intptr_t>(rule));
    EXPECT_EQ(rule->hardLimit, 15 * kMiB);
    EXPECT_EQ(rule->softLimit, 15 * kMiB - 15 * kMiB / 20);
}

TEST_F(SettingsOkTest, ReadsAllUnits)
{
    expectAccepted(newRule(), kAdd, L"1t", L"1g", int64_t{1} << 40, int64_t{1} << 30);
    expectAccepted(newRule(), kAdd, L"3T", L"2k", int64_t{3} << 40, 2048);
    expectAccepted(newRule(), kAdd, L" 5120Mb", L"\t7 ", 5120 * kMiB, 7);
    expectAccepted(newRule(), kAdd, L"4096%", L"0b", 4096, 0);
}

TEST_F(SettingsOkTest, ReadsABlankAsTheUnit)
{
    expectRefused(newRule(), kAdd, L"100 M", L"1", 1024, 1);
    expectAccepted(newRule(), kAdd, L"2000 M", L"1", 2000, 1);
}

TEST_F(SettingsOkTest, ReadsNoMoreThanTheFieldBufferHolds)
{
    // 127 characters and the terminator: of the number only its first digit is left.
    const std::wstring late = std::wstring(126, L' ') + L"5000";
    expectRefused(newRule(), kAdd, late.c_str(), L"1", 1024, 1);
}

TEST_F(SettingsOkTest, NoNumberGivesTheFoldersSizeAndATwentieth)
{
    folderHolds(store, 3000);
    expectAccepted(newRule(), kAdd, L"abc", L"1", 3150, 1);
    expectAccepted(newRule(), kAdd, L"", L"1", 3150, 1);
    expectAccepted(newRule(), kEdit, L"-1", L"1", 3150, 1);
    expectAccepted(newRule(alice), kEdit, L"K", L"1", 3150, 1);
}

TEST_F(SettingsOkTest, NoNumberOnASmallFolderIsRefused)
{
    folderHolds(store, 100);
    expectRefused(newRule(), kAdd, L"abc", L"1", 1024, 1);
}

TEST_F(SettingsOkTest, HardLimitIsAtLeast1024)
{
    for (const int mode : {kAdd, kEdit}) {
        expectRefused(newRule(), mode, L"500", L"1", 1024, 1);
        expectRefused(newRule(), mode, L"1023", L"1", 1024, 1);
        expectAccepted(newRule(), mode, L"1024", L"1", 1024, 1);
        expectRefused(newRule(alice), mode, L"-5K", L"1", 1024, 1);
    }
}

TEST_F(SettingsOkTest, SoftLimitIsNotAboveTheHardLimit)
{
    for (const int mode : {kAdd, kEdit}) {
        expectRefused(newRule(), mode, L"10000", L"10001", 10000, 9500);
        expectAccepted(newRule(), mode, L"10000", L"10000", 10000, 10000);
    }
}

TEST_F(SettingsOkTest, SoftLimitIsANumberNotBelowZero)
{
    expectRefused(newRule(), kAdd, L"10000", L"abc", 10000, 9500);
    expectRefused(newRule(), kAdd, L"10000", L"-5", 10000, 9500);
    expectAccepted(newRule(), kAdd, L"10000", L"0", 10000, 0);
}

TEST_F(SettingsOkTest, SoftLimitIsComparedWithTheCorrectedHardLimit)
{
    expectRefused(newRule(), kAdd, L"5", L"2000", 1024, 1024 - 1024 / 20);
    expectRefused(newRule(), kAdd, L"5", L"1024", 1024, 1024);
}

TEST_F(SettingsOkTest, AnyoneNeedsTheFoldersSize)
{
    folderHolds(store, 5000);
    for (const int mode : {kAdd, kEdit}) {
        expectRefused(newRule(), mode, L"4999", L"1", 5250, 1);
        expectAccepted(newRule(), mode, L"5000", L"1", 5000, 1);
    }
}

TEST_F(SettingsOkTest, AnyoneNeedsTheFoldersSizeWhateverIsChosen)
{
    folderHolds(store, 5000);
    expectRefused(newRule(), kAdd, L"4999", L"1", 5250, 1, clicks({IDC_QUOTA_NO_FILES}));
}

TEST_F(SettingsOkTest, HardLimitBelowTheFoldersSizeCanBeAllowed)
{
    folderHolds(store, 5000);
    expectAccepted(newRule(), kAdd, L"4999", L"1", 4999, 1, clicks({IDC_QUOTA_ALLOW_BELOW}));
    expectAccepted(newRule(alice), kAdd, L"4999", L"1", 4999, 1,
                   clicks({IDC_QUOTA_ALL_FILES, IDC_QUOTA_ALLOW_BELOW}));
    expectRefused(newRule(), kAdd, L"1000", L"1", 1024, 1, clicks({IDC_QUOTA_ALLOW_BELOW}));
}

TEST_F(SettingsOkTest, AnAccountNeedsItsOwnFiles)
{
    folderHolds(store, 50000);
    accountOwns(store, 3000);
    expectRefused(newRule(alice), kAdd, L"2999", L"1", 3150, 1);
    expectAccepted(newRule(alice), kAdd, L"3000", L"1", 3000, 1);
}

TEST_F(SettingsOkTest, AnAccountNeedsAllFilesWhenChosen)
{
    folderHolds(store, 50000);
    accountOwns(store, 3000);
    expectRefused(newRule(alice), kAdd, L"49999", L"1", 52500, 1, clicks({IDC_QUOTA_ALL_FILES}));
    expectAccepted(newRule(alice), kAdd, L"50000", L"1", 50000, 1, clicks({IDC_QUOTA_ALL_FILES}));
}

TEST_F(SettingsOkTest, AnAccountNeedsNothingForNoFiles)
{
    folderHolds(store, 50000);
    accountOwns(store, 3000);
    expectAccepted(newRule(alice), kAdd, L"1024", L"1", 1024, 1, clicks({IDC_QUOTA_NO_FILES}));
}

TEST_F(SettingsOkTest, AnAccountThatWasMeasuredBeforeNeedsNothing)
{
    folderHolds(store, 50000);
    QuotaRule* const rule = newRule(alice);
    rule->inUse = 40000;
    expectAccepted(rule, kAdd, L"1024", L"1", 1024, 1);
}

TEST_F(SettingsOkTest, AnAccountsEditedRuleIsNotHeldToItsFiles)
{
    folderHolds(store, 50000);
    accountOwns(store, 3000);
    expectAccepted(newRule(alice), kEdit, L"1024", L"1", 1024, 1);
}

TEST_F(SettingsOkTest, CanBeRefusedAgainAndThenAccepted)
{
    QuotaRule* const rule = newRule();
    Visit visit;
    visit.onDialog("type", limits(L"500", L"1"));
    EXPECT_EQ(visit.refused().refused().ok(limits(L"5000", L"4000")).open(rule, kAdd),
              reinterpret_cast<intptr_t>(rule));
    EXPECT_EQ(rule->hardLimit, 5000);
    EXPECT_EQ(rule->softLimit, 4000);
}

TEST_F(SettingsOkTest, RefusalLeavesInUseAlone)
{
    folderHolds(store, 5000);
    QuotaRule* const rule = newRule();
    expectRefused(rule, kAdd, L"4999", L"1", 5250, 1, clicks({IDC_QUOTA_NO_FILES}));
    EXPECT_EQ(rule->inUse, 0);
}

TEST_F(SettingsOkTest, AddingCutsTheRecordFromItsNeighbours)
{
    QuotaRule* const rule = newRule();
    rule->prev = newRule();
    rule->next = newRule();
    expectRefused(rule, kAdd, L"500", L"1", 1024, 1);
    EXPECT_EQ(rule->next, nullptr);
    EXPECT_EQ(rule->prev, nullptr);
}

TEST_F(SettingsOkTest, EditingLeavesTheRecordLinked)
{
    QuotaRule* const rule = newRule();
    QuotaRule* const before = rule->prev = newRule();
    QuotaRule* const after = rule->next = newRule();
    expectAccepted(rule, kEdit, L"5000", L"1", 5000, 1);
    EXPECT_EQ(rule->next, after);
    EXPECT_EQ(rule->prev, before);
}

TEST_F(SettingsOkTest, CancelLeavesTheRecordLinked)
{
    QuotaRule* const after = newRule();
    QuotaRule* const rule = newRule();
    rule->next = after;
    EXPECT_EQ(whileOpen(rule, kAdd), 0);
    EXPECT_EQ(rule->next, after);
}

TEST_F(SettingsOkTest, AsksTheStoreNothing)
{
    untilOk(newRule(), kAdd, [this](HWND) { store.takeCalls(); });
    EXPECT_THAT(store.calls(), IsEmpty());
    untilOk(newRule(alice), kAdd, [this](HWND) { store.takeCalls(); });
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(SettingsOkTest, LeavesFolderAndAccountAlone)
{
    QuotaRule* const rule = newRule(alice);
    wchar_t* const path = rule->path;
    void* const sid = rule->sid;
    untilOk(rule, kAdd);
    EXPECT_EQ(rule->path, path);
    EXPECT_STREQ(rule->path, L"C:\\data");
    EXPECT_EQ(rule->sid, sid);
    EXPECT_EQ(rule->type, QUOTA_RULE_FOR_ACCOUNT);
}

TEST_F(SettingsOkTest, AnyNotificationOfOkAndCancelCounts)
{
    constexpr WORD kAnyCode = 99;
    QuotaRule* const rule = newRule();
    for (const int id : {IDOK, IDCANCEL}) {
        const auto notify = [id](HWND dialog) {
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, kAnyCode), 0);
        };
        EXPECT_EQ(Visit().act(notify).open(rule, kAdd), id == IDOK ? reinterpret_cast<intptr_t>(rule) : 0);
    }
}
