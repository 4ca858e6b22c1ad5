// Servers and directories that take their time: what a person can do meanwhile, and in the next dialog.
#include "tests/accounts/chooser_fixture.h"
#include "tests/accounts/members_asked.h"

#include <gmock/gmock.h>

#include <cstdlib>

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

/// Closes dialogs as a platform does that looks at the button first: nothing happens while Cancel is disabled, unless
/// the dialog takes the message itself.
WNDPROC dialogProcedure;
LRESULT CALLBACK closesByCancelAlone(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CLOSE && !isEnabled(dialog, IDCANCEL)) {
        const auto own = reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog, DWLP_DLGPROC));
        own(dialog, message, wParam, lParam);
        return 0;
    }
    return CallWindowProcW(dialogProcedure, dialog, message, wParam, lParam);
}

Gate* directoryGate;

HRESULT WINAPI noSuchDomainAfterAll(LPCWSTR, REFIID, void**)
{
    directoryGate->pass();
    return E_FAIL;
}

class SlowServerTest : public ChooserFixture {
protected:
    SlowServerTest() { giveUsers({"DOM\\ann", "DOM\\bob"}); }

    void inStore(int threads)
    {
        script.step("the thread in the store", [this, threads](HWND) { return gate.waiting() == threads; });
    }

    /// Leaves a fill behind that the store does not let go.
    void leaveFillInStore()
    {
        gate.shut();
        startSearch();
        inStore(1);
        script.onDialog("destroy", [](HWND dialog) { DestroyWindow(dialog); });
        EXPECT_EQ(choose(), nullptr);
        script = {};
    }

    void seeFirstRows()
    {
        script.step("the first rows",
                    [](HWND dialog) { return isEnabled(dialog, IDCANCEL) && list(dialog).rowCount() == 2; });
    }
};

} // namespace

// ---- behind a fill that was left ----

TEST_F(SlowServerTest, TheNextDialogShowsItsFirstRowsAndCanBeCancelledWhileItWaits)
{
    leaveFillInStore();
    startSearch();
    seeFirstRows();
    script.onDialog("look and cancel", [this](HWND dialog) {
        EXPECT_THAT(list(dialog).rows(), ElementsAre(std::string(kWaitText) + "||", "Anyone|Anyone|System"));
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_LIST));
        EXPECT_FALSE(isEnabled(dialog, IDOK)) << "nothing is selected";
        EXPECT_EQ(gate.waiting(), 1) << "the store is asked by one fill at a time";
        click(dialog, IDCANCEL);
    });
    EXPECT_EQ(choose(), nullptr);
    ASSERT_EQ(threads.started(), 2);
    threads.waitFor(1);
    EXPECT_EQ(gate.waiting(), 1) << "the store still holds the first";
}

TEST_F(SlowServerTest, AStoreThatNeverAnswersLeavesAnyoneToBeChosen)
{
    leaveFillInStore();
    for (int opening = 0; opening < 3; ++opening) {
        script = {};
        startSearch();
        seeFirstRows();
        script.onDialog("choose", [](HWND dialog) {
            select(dialog, 1);
            ASSERT_TRUE(isEnabled(dialog, IDOK));
            click(dialog, IDOK);
        });
        EXPECT_EQ(choose(), CORVANE_ANYONE);
        threads.waitFor(1 + opening);
    }
}

TEST_F(SlowServerTest, TheNextFillGoesOnWhenTheOneBeforeHasEnded)
{
    leaveFillInStore();
    startSearch();
    seeFirstRows();
    script.onDialog("the store answers", [this](HWND) { gate.open(); });
    script.step("all accounts", [](HWND dialog) {
        return list(dialog).rowCount() == 3 && list(dialog).text(0, 0) == "Anyone";
    });
    script.onDialog("pick", [](HWND dialog) {
        select(dialog, list(dialog).rowOf("bob"));
        click(dialog, IDOK);
    });
    EXPECT_EQ(chosenName(), "DOM\\bob");
}

// ---- the last domain servers ----

TEST_F(SlowServerTest, AFillThatWasLeftDoesNotChangeTheServersThatGroupsAreAskedOf)
{
    searchServer();
    cancel();
    EXPECT_EQ(choose(), nullptr);
    const std::vector<std::string> before = membersAsked(store);
    ASSERT_THAT(before, Contains(StartsWith("enumerateGroupUsers SERVER ")));

    script = {};
    Gate names;
    names.shut();
    store.answer.getDomainServerByName = [&](const wchar_t*) {
        names.pass();
        return _wcsdup(L"SECOND");
    };
    startSearch();
    script.step("the thread in the store", [&](HWND) { return names.waiting() == 1; });
    script.onDialog("destroy", [](HWND dialog) { DestroyWindow(dialog); });
    EXPECT_EQ(choose(), nullptr);
    names.open();
    threads.waitForAll();
    EXPECT_EQ(membersAsked(store), before);
}

TEST_F(SlowServerTest, TheServersAreKnownWithTheFirstRowsThatComeFromThem)
{
    store.answer.getDomainServerByName = [](const wchar_t*) {
        return _wcsdup(L"NEXT");
    };
    Gate groups;
    groups.shut();
    store.answer.enumerateGroups = [&](const wchar_t*, SidList* list) {
        groups.pass();
        return list;
    };
    startSearch();
    script.step("the users", [](HWND dialog) { return list(dialog).rowCount() == 4; });
    script.onDialog("close", [](HWND dialog) { SendMessageW(dialog, WM_CLOSE, 0, 0); });
    EXPECT_EQ(choose(), nullptr);
    groups.open();
    EXPECT_THAT(membersAsked(store), Contains(StartsWith("enumerateGroupUsers NEXT ")));
}

// ---- a directory that looks for its domain ----

TEST_F(SlowServerTest, ADirectoryThatTakesItsTimeLeavesADialogThatPaintsAnswersAndCloses)
{
    Gate found;
    found.shut();
    directoryGate = &found;
    const ImportPatch slow(ImportPatch::corvane(), "ADsGetObject", &noSuchDomainAfterAll);
    ASSERT_EQ(slow.count(), 1);
    script.onDialog("search", [](HWND dialog) {
        click(dialog, IDC_CHOOSER_CUSTOM_BASE);
        type(dialog, IDC_CHOOSER_BASE, L"WinNT://FAR");
        click(dialog, IDOK);
    });
    script.step("the first rows",
                [&](HWND dialog) { return list(dialog).rowCount() == 2 && found.waiting() == 1; });
    script.onDialog("paint, ask, close", [](HWND dialog) {
        RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        EXPECT_FALSE(GetUpdateRect(dialog, nullptr, FALSE)) << "painted";
        EXPECT_FALSE(GetUpdateRect(list(dialog), nullptr, FALSE)) << "painted";
        EXPECT_EQ(list(dialog).text(1, 0), "Anyone") << "answered";
        EXPECT_FALSE(isEnabled(dialog, IDCANCEL));
        dialogProcedure = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(dialog, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&closesByCancelAlone)));
        SendMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    });
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(found.waiting(), 1) << "the directory still looks";
    store.takeCalls();
    found.open();
    threads.waitForAll();
    EXPECT_THAT(store.calls(), testing::Not(Contains(StartsWith("enumerate")))) << "nobody waits for these";
}
