// Adding rules to the quota list.
#include "tests/quota/list_add_test.h"

#include "res/resource.h"
#include "tests/support/describe.h"
#include "tests/support/rule_memory.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ListAddTest, OneRuleForAnyone)
{
    folderHolds(store, 3 * kMiB);
    EXPECT_TRUE(addWithOk(nullptr, {L"C:\\data"}));
    EXPECT_THAT(host.rows(), ElementsAre("Anyone|15360K|14592K|3072K|20%|C:\\data"));
    const QuotaRule* const rule = chain();
    EXPECT_EQ(rule->type, QUOTA_RULE_FOR_ANYONE);
    EXPECT_EQ(rule->sid, nullptr);
    EXPECT_EQ(rule->hardLimit, 15 * kMiB);
    EXPECT_EQ(rule->inUse, 3 * kMiB);
    EXPECT_EQ(rule->next, nullptr);
    EXPECT_EQ(rule->prev, nullptr);
}

TEST_F(ListAddTest, AsksTheStoreForAnyoneInThisOrder)
{
    addWithOk(nullptr, {L"C:\\data"});
    EXPECT_THAT(store.calls(), ElementsAre("debug {Anyone C:\\data}", "getRealSize C:\\data",
                                           "debug {Anyone C:\\data}", "debug {Anyone C:\\data}"));
}

TEST_F(ListAddTest, AsksTheStoreForAnAccountInThisOrder)
{
    addWithOk(alice, {L"C:\\data"});
    EXPECT_THAT(store.calls(),
                ElementsAre("sidDup alice", "debug {alice C:\\data}", "getAccountBySidW alice 128",
                            // the dialog
                            "getAccountBySidW alice 128", "getRealSize C:\\data", "createEmptySidList",
                            "sidDup alice", "appendToSidList [] alice", "getRealSizeByOwner C:\\data [alice]",
                            "freeSidList [alice]", "getAccountBySidW alice 128",
                            "enumerateGroupUsers null alice null",
                            // the result, and the whole chain
                            "debug {alice C:\\data}", "debug {alice C:\\data}"));
}

TEST_F(ListAddTest, DumpsTheChainBeforeAndAfter)
{
    show(L"C:\\old", bob);
    store.takeCalls();
    addWithOk(nullptr, {L"C:\\data"});
    EXPECT_THAT(store.callsWith("debug"),
                ElementsAre("debug {bob C:\\old}", "debug {Anyone C:\\data}", "debug {Anyone C:\\data}",
                            "debug {Anyone C:\\data, bob C:\\old}"));
}

TEST_F(ListAddTest, OneRuleForAnAccount)
{
    accountOwns(store, 7);
    EXPECT_TRUE(addWithOk(alice, {L"C:\\data"}));
    EXPECT_THAT(host.rows(), ElementsAre("alice|102400K|97280K|7 |00%|C:\\data"));
    const QuotaRule* const rule = chain();
    EXPECT_EQ(rule->type, QUOTA_RULE_FOR_ACCOUNT);
    EXPECT_EQ(describe(static_cast<const void*>(rule->sid)), "alice");
    EXPECT_NE(rule->sid, alice) << "a copy";
}

TEST_F(ListAddTest, CopiesTheFolder)
{
    const Paths paths{L"C:\\data"};
    addWithOk(nullptr, paths);
    EXPECT_NE(chain()->path, paths[0].data());
    EXPECT_STREQ(chain()->path, L"C:\\data");
}

TEST_F(ListAddTest, TheAccountOneIsAnyone)
{
    EXPECT_TRUE(addWithOk(CORVANE_ANYONE, {L"C:\\data"}));
    EXPECT_THAT(host.column(0), ElementsAre("Anyone"));
    EXPECT_EQ(chain()->type, QUOTA_RULE_FOR_ANYONE);
    EXPECT_EQ(chain()->sid, nullptr);
}

TEST_F(ListAddTest, ShowsAnEmptyNameForAnUnknownAccount)
{
    addWithOk(store.unknownAccount(), {L"C:\\data"});
    EXPECT_THAT(host.column(0), ElementsAre(""));
}

TEST_F(ListAddTest, ShowsAProvisionalRowWhileTheDialogIsOpen)
{
    show(L"C:\\old", bob);
    folderHolds(store, 3 * kMiB);
    add(nullptr, {L"C:\\data"}, Visit().ok([this](HWND) {
        EXPECT_THAT(host.rows(),
                    ElementsAre("Anyone|-1 |-1 |-1 |00%|C:\\data", "bob|2048 |1024 |0 |00%|C:\\old"));
    }));
    EXPECT_THAT(host.rows(),
                ElementsAre("Anyone|15360K|14592K|3072K|20%|C:\\data", "bob|2048 |1024 |0 |00%|C:\\old"));
}

TEST_F(ListAddTest, LetsTheDialogComputeTheLimitsOfASingleFolder)
{
    folderHolds(store, 3 * kMiB);
    add(nullptr, {L"C:\\data"}, Visit().ok([](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "15360K");
        EXPECT_NE(GetDlgItem(dialog, IDC_QUOTA_GROUP_MEMBERS), nullptr) << "the template for adding";
    }));
}

TEST_F(ListAddTest, StartsSeveralFoldersAtAHundredMegabytes)
{
    folderHolds(store, 3 * kMiB);
    const auto look = [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "102400K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_SOFT_LIMIT), "97280K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "3072K");
    };
    EXPECT_TRUE(add(nullptr, {L"C:\\a", L"C:\\b"}, Visit().ok(look).ok(look)));
    EXPECT_THAT(host.rows(),
                ElementsAre("Anyone|102400K|97280K|3072K|03%|C:/b", "Anyone|102400K|97280K|3072K|03%|C:\\a"));
    EXPECT_EQ(chain()->hardLimit, 104857600);
    EXPECT_EQ(chain()->softLimit, 99614720);
}

TEST_F(ListAddTest, MeasuresSeveralFoldersForAnyoneOnly)
{
    addWithOk(nullptr, {L"C:\\a", L"C:\\b"});
    EXPECT_THAT(store.takeCalls(), ElementsAre("getRealSize C:\\a", "debug {Anyone C:\\a}",
                                               "getRealSize C:\\a", "debug {Anyone C:\\a}",
                                               // the second folder has been compared with the first rule
                                               "getRealSize C:/b", "debug {Anyone C:/b}", "getRealSize C:/b",
                                               "debug {Anyone C:/b}", "debug {Anyone C:/b, Anyone C:/a}"));
    accountOwns(store, 99);
    addWithOk(alice, {L"C:\\a", L"C:\\b"});
    EXPECT_THAT(store.callsWith("getRealSizeByOwner"), IsEmpty());
    EXPECT_EQ(host.row(0, 4), "alice|102400K|97280K|0 ");
}

TEST_F(ListAddTest, LinksNewRecordsInFront)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    show(L"C:\\old", bob);
    addWithOk(nullptr, {L"C:\\a", L"C:\\b"});
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("Anyone C:/b", "Anyone C:/a", "bob C:\\old"));
}

TEST_F(ListAddTest, CutsTheRecordFromItsNeighboursWhileTheDialogIsOpen)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    show(L"C:\\old", bob);
    add(nullptr, {L"C:\\a"}, Visit().ok([this](HWND) {
        EXPECT_EQ(host.record(0)->next, nullptr);
        EXPECT_EQ(host.record(0)->prev, nullptr);
    }));
    EXPECT_EQ(host.record(0)->next, host.record(1));
    EXPECT_EQ(host.record(1)->prev, host.record(0));
}

TEST_F(ListAddTest, MembersGetRowsOfTheirOwn)
{
    void* const staff = store.account("staff");
    groupHas(store, {alice, bob, store.unknownAccount()});
    show(L"C:\\old", bob);
    EXPECT_TRUE(add(staff, {L"C:\\data"}, Visit().ok([this](HWND dialog) {
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        typeLimits(dialog, L"10K", L"5K");
        store.takeCalls();
    })));
    EXPECT_THAT(host.rows(),
                ElementsAre("|10240 |5120 |0 |00%|C:\\data", "bob|10240 |5120 |0 |00%|C:\\data",
                            "alice|10240 |5120 |0 |00%|C:\\data", "staff|10240 |5120 |0 |00%|C:\\data",
                            "bob|2048 |1024 |0 |00%|C:\\old"));
    const std::string inRowOrder =
        "S-1-5-21-1-2-3-1004 C:\\data, bob C:\\data, alice C:\\data, staff C:\\data, bob C:\\old";
    const std::string family = "staff C:\\data, alice C:\\data, bob C:\\data, S-1-5-21-1-2-3-1004 C:\\data";
    EXPECT_THAT(store.calls(),
                ElementsAre("sidDup alice", "sidDup bob", "sidDup S-1-5-21-1-2-3-1004",
                            "freeSidList [alice, bob, S-1-5-21-1-2-3-1004]", "debug {" + family + "}",
                            "getAccountBySidW alice 128", "getAccountBySidW bob 128",
                            "getAccountBySidW S-1-5-21-1-2-3-1004 128", "debug {" + inRowOrder + "}"));

    EXPECT_THAT(chained(), ElementsAre("S-1-5-21-1-2-3-1004 C:\\data", "bob C:\\data", "alice C:\\data",
                                       "staff C:\\data", "bob C:\\old"));
}
