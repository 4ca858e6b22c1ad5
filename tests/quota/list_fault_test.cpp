// Faults of the store in the list functions: there is no guard, the host sees them, and the next call works.
#include "tests/quota/quota_settings.h"
#include "tests/support/faulting_call.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct ListFaultTest : testing::TestWithParam<Fault> {
    RecordingStore store;
    ListHost host;
    void* const alice = store.account("alice");
    void* const bob = store.account("bob");

    void SetUp() override
    {
        store.put(L"C:\\old", bob, 2048, 1024, 0);
        initializeListCtrl2(host.object(), Paths{L"C:\\old"});
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
        DialogScript script;
        script.onDialog("OK", pressOk);
        EXPECT_NE(script.run([this] { return addToListCtrl2(host.object(), nullptr, Paths{L"C:\\new"}); }),
                  0);
        EXPECT_EQ(host.row(0), "Anyone|102400K|97280K|0 |00%|C:\\new");
        EXPECT_EQ(chainTexts(getDataModified2(host.object())).size(), static_cast<size_t>(host.rowCount()));
        host.selectOnly({0});
        EXPECT_NE(dropFromListCtrl2(host.object()), 0);
    }
};

std::string faultOfTest(const testing::TestParamInfo<Fault>& info)
{
    return faultName(info.param);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Raised, ListFaultTest, testing::ValuesIn(kEveryFault), faultOfTest);

TEST_P(ListFaultTest, BeforeTheDialogOfANewRule)
{
    for (const auto& [function, nth] : {std::pair("debug", 1), std::pair("sidcmp", 1), std::pair("sidDup", 1),
                                        std::pair("debug", 2), std::pair("getAccountBySidW", 1)})
    {
        expectFault(function, nth, [this] { addToListCtrl2(host.object(), alice, Paths{L"C:\\new"}); });
        initializeListCtrl2(host.object(), Paths{L"C:\\old"});
        expectWorks();
    }
    expectFault("getRealSize", 1,
                [this] { addToListCtrl2(host.object(), nullptr, Paths{L"C:\\x", L"C:\\y"}); });
    initializeListCtrl2(host.object(), Paths{L"C:\\old"});
    expectWorks();
}

TEST_P(ListFaultTest, AfterTheDialogOfANewRule)
{
    DialogScript script;
    script.onDialog("OK", [this](HWND dialog) {
        store.takeCalls();
        store.raise("debug", GetParam());
        pressOk(dialog);
    });
    EXPECT_NE(script.run([this] {
        return faultOf([this] { addToListCtrl2(host.object(), nullptr, Paths{L"C:\\new"}); });
    }),
              0u);
    EXPECT_EQ(host.rowCount(), 2);
    initializeListCtrl2(host.object(), Paths{L"C:\\old"});
    expectWorks();
}

TEST_P(ListFaultTest, HandingTheChainBack)
{
    expectFault("debug", 1, [this] { getDataModified2(host.object()); });
    EXPECT_THAT(chainTexts(getDataModified2(host.object())), ElementsAre("bob C:\\old"));
}

TEST_P(ListFaultTest, AfterTheDialogOfAnEditedRule)
{
    host.selectOnly({0});
    DialogScript script;
    script.onDialog("OK", [this](HWND dialog) {
        store.raise("debug", GetParam());
        pressOk(dialog);
    });
    EXPECT_NE(script.run([this] { return faultOf([this] { editFromListCtrl2(host.object()); }); }), 0u);
    expectWorks();
}

TEST_P(ListFaultTest, InTheDialogOfANewRuleIsTheDialogsAffair)
{
    DialogScript script;
    script.onDialog("look", [this](HWND) { EXPECT_THAT(store.lines(), ElementsAre(kCrashLine)); })
        .onDialog("Cancel", pressCancel);
    store.raise("getAccountBySidW", GetParam(), 2);
    EXPECT_EQ(script.run([this] { return addToListCtrl2(host.object(), alice, Paths{L"C:\\new"}); }), 0);
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_P(ListFaultTest, MakingFoldersKnown)
{
    for (const char* const function : {"getKnownPaths", "appendToPaths", "storeKnownPaths", "freePathList"}) {
        DialogScript script;
        script.onDialog("OK", pressOk);
        store.raise(function, GetParam());
        EXPECT_NE(script.run([this] {
            return faultOf(
                [this] { addToListCtrl(host.window(), ListHost::kListId, nullptr, Paths{L"C:\\new"}); });
        }),
                  0u)
            << function;
        EXPECT_EQ(host.rowCount(), 2) << "the rule is there";
        host.selectOnly({0});
        dropFromListCtrl2(host.object());
        expectWorks();
    }
}
