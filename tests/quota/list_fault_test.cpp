// Faults of the store in the list functions: there is no guard, the host sees them, and the next call works.
#include "tests/quota/rule_list_test.h"

#include "tests/support/faulting_call.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct ListFaultTest : RuleListTest, testing::WithParamInterface<Fault> {
    void* const alice = store.account("alice");
    void* const bob = store.account("bob");

    void SetUp() override
    {
        store.put(L"C:\\old", bob, 2048, 1024, 0);
        prepare({L"C:\\old"});
    }

    /// The call lets the fault of a store function through, and writes no line.
    template <class Call>
    void expectFault(const char* function, int nth, Call call)
    {
        store.takeCalls();
        store.raise(function, GetParam(), nth);
        EXPECT_NE(faultOf(call), 0u) << function << " call " << nth;
        EXPECT_THAT(store.lines(), IsEmpty());
    }

    /// Whatever happened: rules can be added, handed back and dropped.
    void expectWorks()
    {
        EXPECT_TRUE(addWithOk(nullptr, {L"C:\\new"}));
        EXPECT_EQ(host.row(0), "Anyone|102400K|97280K|0 |00%|C:\\new");
        EXPECT_EQ(chained().size(), static_cast<size_t>(host.rowCount()));
        EXPECT_TRUE(drop({0}));
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Raised, ListFaultTest, testing::ValuesIn(kEveryFault),
                         testing::PrintToStringParamName());

TEST_P(ListFaultTest, BeforeTheDialogOfANewRule)
{
    for (const auto& [function, nth] : {std::pair("debug", 1), std::pair("sidcmp", 1), std::pair("sidDup", 1),
                                        std::pair("debug", 2), std::pair("getAccountBySidW", 1)})
    {
        expectFault(function, nth, [this] { add(alice, {L"C:\\new"}); });
        prepare({L"C:\\old"});
        expectWorks();
    }
    expectFault("getRealSize", 1, [this] { add(nullptr, {L"C:\\x", L"C:\\y"}); });
    prepare({L"C:\\old"});
    expectWorks();
}

TEST_P(ListFaultTest, AfterTheDialogOfANewRule)
{
    const auto raise = [this](HWND) {
        store.takeCalls();
        store.raise("debug", GetParam());
    };
    EXPECT_NE(faultOf([&] { add(nullptr, {L"C:\\new"}, Visit().ok(raise)); }), 0u);
    EXPECT_EQ(host.rowCount(), 2);
    prepare({L"C:\\old"});
    expectWorks();
}

TEST_P(ListFaultTest, HandingTheChainBack)
{
    expectFault("debug", 1, [this] { chain(); });
    EXPECT_THAT(chained(), ElementsAre("bob C:\\old"));
}

TEST_P(ListFaultTest, AfterTheDialogOfAnEditedRule)
{
    host.selectOnly({0});
    EXPECT_NE(faultOf([this] { edit(Visit().ok([this](HWND) { store.raise("debug", GetParam()); })); }), 0u);
    expectWorks();
}

TEST_P(ListFaultTest, InTheDialogOfANewRuleIsTheDialogsAffair)
{
    store.raise("getAccountBySidW", GetParam(), 2);
    EXPECT_FALSE(add(alice, {L"C:\\new"},
                     Visit().cancel([this](HWND) { EXPECT_THAT(store.lines(), ElementsAre(kCrashLine)); })));
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_P(ListFaultTest, MakingFoldersKnown)
{
    for (const char* const function : {"getKnownPaths", "appendToPaths", "storeKnownPaths", "freePathList"}) {
        store.raise(function, GetParam());
        EXPECT_NE(Visit().ok().run([this] {
            return faultOf(
                [this] { addToListCtrl(host.window(), ListHost::kListId, nullptr, Paths{L"C:\\new"}); });
        }),
                  0u)
            << function;
        EXPECT_EQ(host.rowCount(), 2) << "the rule is there";
        drop({0});
        expectWorks();
    }
}
