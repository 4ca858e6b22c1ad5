// Faults of the store inside the Quota Settings dialog.
#include "tests/quota/quota_settings.h"
#include "tests/support/list_host.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SettingsFaultTest : public testing::TestWithParam<Fault> {
protected:
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
        const intptr_t result =
            untilOk(edited, mode, [](HWND dialog) { typeLimits(dialog, L"20M", L"10M"); });
        EXPECT_EQ(result, reinterpret_cast<intptr_t>(edited));
        EXPECT_EQ(edited->hardLimit, 20 * kMiB);
        EXPECT_EQ(edited->softLimit, 10 * kMiB);
    }
};

std::string faultOfTest(const testing::TestParamInfo<Fault>& info)
{
    return faultName(info.param);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Raised, SettingsFaultTest, testing::ValuesIn(kEveryFault), faultOfTest);

TEST_P(SettingsFaultTest, MeasuringTheFolderIsSilent)
{
    raise("getRealSize");
    QuotaRule* const anyone = newRule();
    whileOpen(anyone, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, kObjectSize), "0 ");
        EXPECT_EQ(controlText(dialog, kInUse), "0 ");
        EXPECT_EQ(controlText(dialog, kHardLimit), "102400K");
        EXPECT_EQ(controlText(dialog, kSoftLimit), "97280K");
        EXPECT_TRUE(isChecked(dialog, kAllFiles));
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
            EXPECT_EQ(controlText(dialog, kObjectSize), "3072K");
            EXPECT_EQ(controlText(dialog, kInUse), "-1 ");
            EXPECT_FALSE(isChecked(dialog, kOwnedFiles));
            EXPECT_TRUE(isEnabled(dialog, kGroupMembers)) << "the steps that follow are done";
            // What the account owns is not known.
            click(dialog, kOwnedFiles);
            EXPECT_EQ(controlText(dialog, kInUse), "0 ");
        });
        EXPECT_THAT(store.lines(), IsEmpty()) << function;
    }
    expectWorks(rule);
}

TEST_P(SettingsFaultTest, ReleasingTheMeasuredAccountIsSilent)
{
    raise("freeSidList");
    whileOpen(rule, kAdd, [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, kInUse), "2000 ");
        EXPECT_TRUE(isChecked(dialog, kOwnedFiles));
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
            EXPECT_EQ(controlText(dialog, kCredentials), "staff");
            EXPECT_FALSE(isEnabled(dialog, kGroupMembers));
            EXPECT_FALSE(isEnabled(dialog, kNewMembers));
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
        EXPECT_EQ(controlText(dialog, kAppliedTo), "C:\\data") << "what was done before stays";
        EXPECT_EQ(controlText(dialog, kHardLimit), "") << "what follows is not done";
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
    DialogScript script;
    script
        .onDialog("OK with a fault",
                  [this](HWND dialog) {
                      click(dialog, kGroupMembers);
                      typeLimits(dialog, L"20M", L"10M");
                      raise("sidDup", 2);
                      SendMessageW(dialog, WM_COMMAND, IDOK, 0);
                      EXPECT_THAT(store.lines(), ElementsAre(kCrashLine));
                      EXPECT_EQ(rule->hardLimit, 20 * kMiB);
                  })
        .onDialog("OK", pressOk);
    EXPECT_EQ(script.run([this] { return editQuotaListEntry(nullptr, rule, kAdd); }),
              reinterpret_cast<intptr_t>(rule));
    EXPECT_THAT(store.lines(), ElementsAre(kCrashLine));
    EXPECT_THAT(chainTexts(rule), ElementsAre("staff C:\\data", "ann C:\\data", "bob C:\\data"));
}

TEST_P(SettingsFaultTest, TrackingIsLoggedAndOkCanBePressedAgain)
{
    DialogScript script;
    script
        .onDialog("OK with a fault",
                  [this](HWND dialog) {
                      click(dialog, kGroupMembers);
                      click(dialog, kNewMembers);
                      raise("addToTrackList");
                      SendMessageW(dialog, WM_COMMAND, IDOK, 0);
                      EXPECT_THAT(store.lines(), ElementsAre(kTrackingLine, kCrashLine));
                      store.takeCalls();
                  })
        .onDialog("OK", pressOk);
    EXPECT_EQ(script.run([this] { return editQuotaListEntry(nullptr, rule, kAdd); }),
              reinterpret_cast<intptr_t>(rule));
    EXPECT_THAT(store.lines(), ElementsAre(kTrackingLine));
    EXPECT_THAT(chainTexts(rule), ElementsAre("staff C:\\data", "ann C:\\data", "bob C:\\data"));
}

TEST_P(SettingsFaultTest, ALineThatFaultsIsLogged)
{
    DialogScript script;
    script
        .onDialog("OK with a fault",
                  [this](HWND dialog) {
                      click(dialog, kGroupMembers);
                      click(dialog, kNewMembers);
                      raise("ODS");
                      SendMessageW(dialog, WM_COMMAND, IDOK, 0);
                      EXPECT_THAT(store.lines(), ElementsAre(kTrackingLine, kCrashLine));
                  })
        .onDialog("OK", pressOk);
    EXPECT_EQ(script.run([this] { return editQuotaListEntry(nullptr, rule, kAdd); }),
              reinterpret_cast<intptr_t>(rule));
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
        whileOpen(rule, kEdit, [](HWND) {});
        EXPECT_EQ(store.lines().size(), static_cast<size_t>(round));
    }
}
