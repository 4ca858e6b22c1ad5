// Adding rules to the quota list.
#include "tests/quota/list_add_test.h"

#include "res/resource.h"
#include "tests/support/describe.h"
#include "tests/support/import_patch.h"
#include "tests/support/rule_memory.h"
#include "tests/support/text.h"

#include <commctrl.h>
#include <malloc.h>

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ListAddTest, OneRuleForAnyone)
{
    folderHolds(store, 3 * kMiB);
    EXPECT_NE(addWithOk(nullptr, Paths{L"C:\\data"}, 1), 0);
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
    addWithOk(nullptr, Paths{L"C:\\data"}, 1);
    EXPECT_THAT(store.calls(), ElementsAre("debug {Anyone C:\\data}", "getRealSize C:\\data",
                                           "debug {Anyone C:\\data}", "debug {Anyone C:\\data}"));
}

TEST_F(ListAddTest, AsksTheStoreForAnAccountInThisOrder)
{
    addWithOk(alice, Paths{L"C:\\data"}, 1);
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
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    store.takeCalls();
    addWithOk(nullptr, Paths{L"C:\\data"}, 1);
    std::vector<std::string> dumps;
    for (const std::string& call : store.calls()) {
        if (call.starts_with("debug")) {
            dumps.push_back(call);
        }
    }
    EXPECT_THAT(dumps, ElementsAre("debug {bob C:\\old}", "debug {Anyone C:\\data}",
                                   "debug {Anyone C:\\data}", "debug {Anyone C:\\data, bob C:\\old}"));
}

TEST_F(ListAddTest, OneRuleForAnAccount)
{
    accountOwns(store, 7);
    EXPECT_NE(addWithOk(alice, Paths{L"C:\\data"}, 1), 0);
    EXPECT_THAT(host.rows(), ElementsAre("alice|102400K|97280K|7 |00%|C:\\data"));
    const QuotaRule* const rule = chain();
    EXPECT_EQ(rule->type, QUOTA_RULE_FOR_ACCOUNT);
    EXPECT_EQ(describe(static_cast<const void*>(rule->sid)), "alice");
    EXPECT_NE(rule->sid, alice) << "a copy";
}

TEST_F(ListAddTest, CopiesTheFolder)
{
    const Paths paths{L"C:\\data"};
    addWithOk(nullptr, paths, 1);
    EXPECT_NE(chain()->path, paths[0].data());
    EXPECT_STREQ(chain()->path, L"C:\\data");
}

TEST_F(ListAddTest, TheAccountOneIsAnyone)
{
    EXPECT_NE(addWithOk(CORVANE_ANYONE, Paths{L"C:\\data"}, 1), 0);
    EXPECT_THAT(host.column(0), ElementsAre("Anyone"));
    EXPECT_EQ(chain()->type, QUOTA_RULE_FOR_ANYONE);
    EXPECT_EQ(chain()->sid, nullptr);
}

TEST_F(ListAddTest, ShowsAnEmptyNameForAnUnknownAccount)
{
    addWithOk(store.unknownAccount(), Paths{L"C:\\data"}, 1);
    EXPECT_THAT(host.column(0), ElementsAre(""));
}

TEST_F(ListAddTest, ShowsAProvisionalRowWhileTheDialogIsOpen)
{
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    folderHolds(store, 3 * kMiB);
    DialogScript script;
    script
        .onDialog("look",
                  [this](HWND) {
                      EXPECT_THAT(host.rows(), ElementsAre("Anyone|-1 |-1 |-1 |00%|C:\\data",
                                                           "bob|2048 |1024 |0 |00%|C:\\old"));
                  })
        .onDialog("OK", pressOk);
    add(script, nullptr, Paths{L"C:\\data"});
    EXPECT_THAT(host.rows(),
                ElementsAre("Anyone|15360K|14592K|3072K|20%|C:\\data", "bob|2048 |1024 |0 |00%|C:\\old"));
}

TEST_F(ListAddTest, LetsTheDialogComputeTheLimitsOfASingleFolder)
{
    folderHolds(store, 3 * kMiB);
    DialogScript script;
    script
        .onDialog("look",
                  [](HWND dialog) {
                      EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "15360K");
                      EXPECT_NE(GetDlgItem(dialog, IDC_QUOTA_GROUP_MEMBERS), nullptr)
                          << "the template for adding";
                  })
        .onDialog("OK", pressOk);
    add(script, nullptr, Paths{L"C:\\data"});
}

TEST_F(ListAddTest, StartsSeveralFoldersAtAHundredMegabytes)
{
    folderHolds(store, 3 * kMiB);
    DialogScript script;
    const auto look = [](HWND dialog) {
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_HARD_LIMIT), "102400K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_SOFT_LIMIT), "97280K");
        EXPECT_EQ(controlText(dialog, IDC_QUOTA_IN_USE), "3072K");
        pressOk(dialog);
    };
    script.onDialog("first", look).onDialog("second", look);
    EXPECT_NE(add(script, nullptr, Paths{L"C:\\a", L"C:\\b"}), 0);
    EXPECT_THAT(host.rows(),
                ElementsAre("Anyone|102400K|97280K|3072K|03%|C:/b", "Anyone|102400K|97280K|3072K|03%|C:\\a"));
    EXPECT_EQ(chain()->hardLimit, 104857600);
    EXPECT_EQ(chain()->softLimit, 99614720);
}

TEST_F(ListAddTest, MeasuresSeveralFoldersForAnyoneOnly)
{
    addWithOk(nullptr, Paths{L"C:\\a", L"C:\\b"}, 2);
    EXPECT_THAT(store.takeCalls(), ElementsAre("getRealSize C:\\a", "debug {Anyone C:\\a}",
                                               "getRealSize C:\\a", "debug {Anyone C:\\a}",
                                               // the second folder has been compared with the first rule
                                               "getRealSize C:/b", "debug {Anyone C:/b}", "getRealSize C:/b",
                                               "debug {Anyone C:/b}", "debug {Anyone C:/b, Anyone C:/a}"));
    accountOwns(store, 99);
    addWithOk(alice, Paths{L"C:\\a", L"C:\\b"}, 2);
    EXPECT_THAT(store.calls(), testing::Not(Contains(testing::HasSubstr("getRealSizeByOwner"))));
    EXPECT_EQ(host.row(0, 4), "alice|102400K|97280K|0 ");
}

TEST_F(ListAddTest, LinksNewRecordsInFront)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    addWithOk(nullptr, Paths{L"C:\\a", L"C:\\b"}, 2);
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("Anyone C:/b", "Anyone C:/a", "bob C:\\old"));
}

TEST_F(ListAddTest, CutsTheRecordFromItsNeighboursWhileTheDialogIsOpen)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    DialogScript script;
    script
        .onDialog("look",
                  [this](HWND) {
                      EXPECT_EQ(host.record(0)->next, nullptr);
                      EXPECT_EQ(host.record(0)->prev, nullptr);
                  })
        .onDialog("OK", pressOk);
    add(script, nullptr, Paths{L"C:\\a"});
    EXPECT_EQ(host.record(0)->next, host.record(1));
    EXPECT_EQ(host.record(1)->prev, host.record(0));
}

TEST_F(ListAddTest, MembersGetRowsOfTheirOwn)
{
    void* const staff = store.account("staff");
    groupHas(store, {alice, bob, store.unknownAccount()});
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    DialogScript script;
    script
        .onDialog("choose",
                  [this](HWND dialog) {
                      click(dialog, IDC_QUOTA_GROUP_MEMBERS);
                      typeLimits(dialog, L"10K", L"5K");
                      store.takeCalls();
                  })
        .onDialog("OK", pressOk);
    EXPECT_NE(add(script, staff, Paths{L"C:\\data"}), 0);
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

    EXPECT_THAT(chainTexts(chain()), ElementsAre("S-1-5-21-1-2-3-1004 C:\\data", "bob C:\\data",
                                                 "alice C:\\data", "staff C:\\data", "bob C:\\old"));
}
