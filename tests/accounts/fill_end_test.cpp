// Dialogs that go while their list is being filled.
#include "tests/accounts/chooser_fixture.h"

#include "store/lornix.h"
#include "tests/support/leak_count.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <random>

using testing::ElementsAre;

namespace {

class FillEndTest : public ChooserFixture {
protected:
    FillEndTest()
    {
        std::vector<std::string> users;
        for (int i = 0; i < 60; ++i) {
            users.push_back("DOM\\user" + std::to_string(i));
        }
        giveUsers(users);
        giveGroups({"DOM\\staff", "DOM\\guests"});
    }

    /// Destroys the dialog as a host may, with the fill thread inside the store.
    void destroyDuringFill()
    {
        gate.shut();
        startSearch();
        script.step("the thread in the store", [this](HWND) { return gate.waiting() == 1; });
        script.onDialog("destroy", [](HWND dialog) { DestroyWindow(dialog); });
    }
};

} // namespace

TEST_F(FillEndTest, ADestroyedDialogStopsTheFill)
{
    destroyDuringFill();
    EXPECT_EQ(choose(), nullptr);
    store.takeCalls();
    gate.open();
    threads.waitForAll();
    int copies = 0;
    for (const std::string& call : store.calls()) {
        copies += call.starts_with("sidDup") ? 1 : 0;
    }
    EXPECT_EQ(copies, 0) << "no row is made any more";
    EXPECT_EQ(store.openSidLists(), 0);
}

TEST_F(FillEndTest, ADestroyedDialogHasChosenNothing)
{
    script.onDialog("choose", [](HWND dialog) {
        click(dialog, IDC_CHOOSER_TYPE);
        type(dialog, IDC_CHOOSER_NAME, L"Anyone");
        click(dialog, IDOK);
    });
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    script = {};
    script.onDialog("destroy", [](HWND dialog) { DestroyWindow(dialog); });
    EXPECT_EQ(choose(), nullptr) << "the last choice may be released by now";
}

TEST_F(FillEndTest, TheCallersOwnersMayGoBeforeTheFillEnds)
{
    SidList* const owners = RecordingStore::makeSidList({store.account("DOM\\owner")});
    destroyDuringFill();
    EXPECT_EQ(choose(owners), nullptr);
    std::memset(owners->sids[0], 0xDD, 8);
    freeSidList(owners);
    gate.open();
    threads.waitForAll();
    EXPECT_EQ(store.openSidLists(), 0);
}

TEST_F(FillEndTest, TheNextFillWaitsForTheThreadOfTheLast)
{
    destroyDuringFill();
    EXPECT_EQ(choose(), nullptr);
    script = {};
    startSearch();
    script.onDialog("look", [this](HWND dialog) {
        EXPECT_LE(list(dialog).rowCount(), 2) << "names are found in buffers that all threads share";
        EXPECT_EQ(gate.waiting(), 1);
        gate.open();
    });
    script.step("the fill's end", [](HWND dialog) { return list(dialog).rowCount() == 1 + 60 + 2; });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(threads.started(), 2);
}

TEST_F(FillEndTest, AListDestroyedAloneStopsTheFillToo)
{
    gate.shut();
    startSearch();
    script.step("the thread in the store", [this](HWND) { return gate.waiting() == 1; });
    std::vector<std::string> lines;
    script.onDialog("destroy the list", [&, this](HWND dialog) {
        DestroyWindow(list(dialog));
        gate.open();
        threads.waitForAll();
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
        std::erase_if(lines = store.lines(),
                      [](const std::string& line) { return !line.starts_with("onOk"); });
    });
    script.onDialog("cancel", [](HWND dialog) { SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0); });
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(lines, ElementsAre("onOk\n")) << "there is nothing to pick, and the dialog stays";
    EXPECT_THAT(store.lines(), testing::Not(testing::Contains("SID DLG: MyDlgProc: SIGSEGV\n")));
}

TEST_F(FillEndTest, FillingAndPickingLeavesNothingBehind)
{
    const auto once = [this] {
        script = {};
        searchServer();
        script.onDialog("filter, sort, pick", [this](HWND dialog) {
            filterBar->type(0, L"user1");
            list(dialog).clickColumn(1);
            filterBar->type(0, L"user");
            filterBar->type(0, L"user1");
            select(dialog, list(dialog).rowOf("user1"));
            click(dialog, IDOK);
        });
        void* const chosen = choose();
        EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\user1");
        std::free(chosen);
        threads.waitForAll();
        store.takeCalls();
        script = {};
    };
    constexpr int kRounds = 20;
    for (int i = 0; i < 3; ++i) {
        once();
    }
    fillThreadLists();
    const LeakCount before = LeakCount::now();
    for (int i = 0; i < kRounds; ++i) {
        once();
    }
    const LeakCount after = LeakCount::now();
    EXPECT_LT(after.heapBlocks, before.heapBlocks + kRounds) << before << " before, " << after << " after";
    EXPECT_LT(after.gdiObjects, before.gdiObjects + kRounds);
    EXPECT_EQ(after.windows, before.windows);
    // The test itself keeps a handle to each thread.
    EXPECT_LT(after.handles - kRounds, before.handles + kRounds / 2);
    EXPECT_EQ(store.openSidLists(), 0);
}

// Three hundred in all, told apart by their seeds; tests/stress/run abort_fill does as many as it is told.
class RandomFillEndTest : public FillEndTest, public testing::WithParamInterface<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Seed, RandomFillEndTest, testing::Values(1u, 2u, 3u, 4u, 5u));

TEST_P(RandomFillEndTest, DialogsGoAtRandomMomentsOfTheirFill)
{
    constexpr int kOpenings = 60;
    constexpr int kWarmUp = 20;
    constexpr void (*kEnds[])(HWND) = {[](HWND dialog) { DestroyWindow(dialog); },
                                       [](HWND dialog) { EndDialog(dialog, 0); },
                                       [](HWND dialog) {
                                           SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
                                       }};
    std::mt19937 random(GetParam());
    const auto upTo = [&random](unsigned most) {
        return random() % (most + 1);
    };
    SidList* const owners = RecordingStore::makeSidList({store.account("DOM\\owner")});
    LeakCount before;
    for (int opening = 0; opening < kOpenings + kWarmUp; ++opening) {
        if (opening == kWarmUp) {
            threads.forget();
            fillThreadLists();
            before = LeakCount::now();
        }
        const unsigned pumps = upTo(60);
        const unsigned wait = upTo(3);
        const auto end = kEnds[upTo(2)];
        script = {};
        script.onDialog("search, and go", [&](HWND dialog) {
            if (upTo(3) != 0) {
                click(dialog, IDC_CHOOSER_CUSTOM_BASE);
                type(dialog, IDC_CHOOSER_BASE, kServer);
            }
            click(dialog, IDOK);
            pump(pumps, wait);
            end(dialog);
        });
        ASSERT_EQ(choose(opening % 2 == 0 ? owners : nullptr), nullptr) << "opening " << opening;
        if (upTo(4) == 0) {
            threads.waitForAll();
            store.takeCalls();
        }
    }
    threads.waitForAll();
    EXPECT_EQ(threads.started(), kOpenings);
    threads.forget();
    store.takeCalls();
    const LeakCount after = LeakCount::now();
    EXPECT_LT(after.handles, before.handles + 20) << before << " before, " << after << " after";
    EXPECT_LT(after.heapBlocks, before.heapBlocks + kOpenings / 2)
        << before << " before, " << after << " after";
    EXPECT_LT(after.gdiObjects, before.gdiObjects + 20);
    EXPECT_EQ(after.windows, before.windows);
    EXPECT_EQ(store.openSidLists(), 1) << "the owners";
    freeSidList(owners);
}
