// Faults of the store inside the Quota Settings dialog.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/list_host.h"

#include <gmock/gmock.h>

#include <optional>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct SettingsFaultTest : testing::TestWithParam<Fault> {
    RecordingStore store;
    void* const staff = store.account("staff");
    void* const ann = store.account("ann");
    void* const bob = store.account("bob");
    QuotaRule* const rule = newRule(staff);

    void SetUp() override
    {
        groupHas(store, {ann, bob});
        folderHolds(store, 3 * kMiB);
        accountOwns(store, 2000);
    }

    void raise(std::string_view function, int nth = 1) { store.raise(function, GetParam(), nth); }

    /// The dialog still does its work, up to OK.
    void expectWorks(QuotaRule* edited, int mode = kAdd)
    {
        const intptr_t result = untilOk(edited, mode, limits(L"20M", L"10M"));
        EXPECT_EQ(result, reinterpret_cast<intptr_t>(edited));
        EXPECT_EQ(edited->hardLimit, 20 * kMiB);
        EXPECT_EQ(edited->softLimit, 10 * kMiB);
    }

    /// Chooses the members, does more, and presses OK, which faults; then presses it again. The lines of the second time
    /// are left in the store.
    void okTwice(const DialogScript::Act& more, const std::vector<std::string>& linesOfTheFault,
                 std::optional<int64_t> hardLimit = std::nullopt)
    {
        const auto pressFirst = [&](HWND dialog) {
            click(dialog, IDC_QUOTA_GROUP_MEMBERS);
            more(dialog);
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
            EXPECT_EQ(store.lines(), linesOfTheFault);
            EXPECT_EQ(rule->hardLimit, hardLimit.value_or(rule->hardLimit)) << "taken already";
            store.takeCalls();
        };
        EXPECT_EQ(untilOk(rule, kAdd, pressFirst), reinterpret_cast<intptr_t>(rule));
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Raised, SettingsFaultTest, testing::ValuesIn(kEveryFault),
                         testing::PrintToStringParamName());

TEST_P(SettingsFaultTest, MeasuringTheFolderIsSilent)
{
    raise("getRealSize");
    QuotaRule* const anyone = newRule();
    whileOpen(anyone, kAdd, [](HWND dialog) {
        EXPECT_EQ(sizes(dialog), "0 |0 |102400K|97280K");
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_ALL_FILES));
    });
    EXPECT_EQ(anyone->inUse, 0);
    EXPECT_THAT(store.lines(), IsEmpty());
    raise("getRealSize");
    expectWorks(anyone);
}

TEST_P(SettingsFaultTest, MeasuringTheAccountIsSilent)
{
    for (const char* const function :
         {"getRealSizeByOwner", "createEmptySidList", "appendToSidList", "sidDup"})
    {
        rule->inUse = QUOTA_IN_USE_UNKNOWN;
        raise(function);
        whileOpen(rule, kAdd, [](HWND dialog) {
            EXPECT_EQ(controlText(dialog, IDC_QUOTA_OBJECT_SIZE), "3072K");
            EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "-1 ");
            EXPECT_FALSE(isChecked(dialog, IDC_QUOTA_OWNED_FILES));
            EXPECT_TRUE(isEnabled(dialog, IDC_QUOTA_GROUP_MEMBERS)) << "the steps that follow are done";
            // What the account owns is not known.
            click(dialog, IDC_QUOTA_OWNED_FILES);
            EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "0 ");
        });
        EXPECT_THAT(store.lines(), IsEmpty()) << function;
    }
    expectWorks(rule);
}

TEST_P(SettingsFaultTest, ReleasingTheMeasuredAccountIsSilent)
{
    raise("freeSidList");
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "2000 ");
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_OWNED_FILES));
    });
    EXPECT_EQ(rule->inUse, 2000);
    EXPECT_THAT(store.lines(), IsEmpty());
}

TEST_P(SettingsFaultTest, FindingTheMembersIsSilent)
{
    for (const auto& [function, nth] :
         {std::pair("enumerateGroupUsers", 1), std::pair("getAccountBySidW", 2)})
    {
        raise(function, nth);
        whileOpen(rule, kAdd, [](HWND dialog) {
            EXPECT_EQ(controlText(dialog, IDC_QUOTA_CREDENTIALS), "staff");
            EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_GROUP_MEMBERS));
            EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_NEW_MEMBERS));
        });
        EXPECT_THAT(store.lines(), IsEmpty()) << function;
    }
    raise("enumerateGroupUsers");
    expectWorks(rule);
}

TEST_P(SettingsFaultTest, NamingTheAccountIsLogged)
{
    raise("getAccountBySidW");
    rule->hardLimit = 30 * kMiB;
    intptr_t result = 0;
    result = untilOk(rule, kAdd, [this](HWND dialog) {
        EXPECT_THAT(store.lines(), ElementsAre(kCrashLine));
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_APPLIED_TO), "C:\\data") << "what was done before stays";
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "") << "what follows is not done";
        typeLimits(dialog, L"20M", L"10M");
    });
    EXPECT_EQ(result, reinterpret_cast<intptr_t>(rule)) << "the dialog knows its record";
    EXPECT_EQ(rule->hardLimit, 20 * kMiB);
    EXPECT_THAT(store.lines(), ElementsAre(kCrashLine));
}

TEST_P(SettingsFaultTest, NamingTheAccountIsLoggedWhenEditing)
{
    raise("getAccountBySidW");
    whileOpen(rule, kEdit, [this](HWND) { EXPECT_THAT(store.lines(), ElementsAre(kCrashLine)); });
    EXPECT_THAT(store.lines(), ElementsAre(kCrashLine));
    store.takeCalls();
    expectWorks(rule, kEdit);
}

TEST_P(SettingsFaultTest, CopyingAMemberIsLoggedAndOkCanBePressedAgain)
{
    okTwice(
        [this](HWND dialog) {
            typeLimits(dialog, L"20M", L"10M");
            raise("sidDup", 2);
        },
        {kCrashLine}, 20 * kMiB);
    EXPECT_THAT(store.lines(), IsEmpty());
    EXPECT_THAT(chainTexts(rule), ElementsAre("staff C:\\data", "ann C:\\data", "bob C:\\data"));
}

TEST_P(SettingsFaultTest, TrackingIsLoggedAndOkCanBePressedAgain)
{
    okTwice(
        [this](HWND dialog) {
            click(dialog, IDC_QUOTA_NEW_MEMBERS);
            raise("addToTrackList");
        },
        {kTrackingLine, kCrashLine});
    EXPECT_THAT(store.lines(), ElementsAre(kTrackingLine));
    EXPECT_THAT(chainTexts(rule), ElementsAre("staff C:\\data", "ann C:\\data", "bob C:\\data"));
}

TEST_P(SettingsFaultTest, ALineThatFaultsIsLogged)
{
    okTwice(
        [this](HWND dialog) {
            click(dialog, IDC_QUOTA_NEW_MEMBERS);
            raise("ODS");
        },
        {kTrackingLine, kCrashLine});
}

TEST_P(SettingsFaultTest, ACrashLineThatFaultsIsSurvived)
{
    raise("getAccountBySidW");
    raise("ODS");
    expectWorks(rule);
}

TEST_P(SettingsFaultTest, ReleasingTheMembersIsLogged)
{
    whileOpen(rule, kAdd, [this](HWND) { raise("freeSidList"); });
    EXPECT_THAT(store.lines(), ElementsAre(kCrashLine));
    store.takeCalls();
    expectWorks(rule);
}

TEST_P(SettingsFaultTest, CanComeAgainAndAgain)
{
    for (int round = 1; round <= 3; ++round) {
        raise("getAccountBySidW");
        whileOpen(rule, kEdit);
        EXPECT_EQ(store.lines().size(), static_cast<size_t>(round));
    }
}
