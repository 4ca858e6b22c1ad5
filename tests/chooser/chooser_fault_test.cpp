// Faults of the store and of the platform under the dialog.
#include "tests/chooser/chooser_fixture.h"

#include "store/lornix.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>

using testing::Contains;
using testing::Not;

namespace {

constexpr char kLine[] = "SID DLG: MyDlgProc: SIGSEGV\n";

class ChooserFaultTest : public ChooserFixture, public testing::WithParamInterface<Fault> {
protected:
    int guardLines() const
    {
        const std::vector<std::string> lines = store.lines();
        return static_cast<int>(std::count(lines.begin(), lines.end(), kLine));
    }
    void cancel()
    {
        script.onDialog("cancel", [](HWND dialog) { click(dialog, IDCANCEL); });
    }
};

std::string nameOfFault(const testing::TestParamInfo<Fault>& info)
{
    return faultName(info.param);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Each, ChooserFaultTest, testing::ValuesIn(kEveryFault), nameOfFault);

TEST_P(ChooserFaultTest, OpeningSurvivesTheDomainSid)
{
    store.raise("getDomainSid", GetParam());
    script.onDialog("look", [](HWND dialog) {
        EXPECT_FALSE(isChecked(dialog, IDC_CHOOSER_SEARCH)) << "what comes after the fault is not done";
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(guardLines(), 1);
}

TEST_P(ChooserFaultTest, OpeningSurvivesTheDomainServer)
{
    void* const sid = store.account("DOM");
    store.answer.getDomainSid = [sid] {
        return sidDup(sid);
    };
    store.raise("getDomainServer", GetParam());
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(guardLines(), 1);
}

TEST_P(ChooserFaultTest, OpeningSurvivesItsOwnLine)
{
    store.raise("ODS", GetParam());
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(guardLines(), 1);
}

TEST_P(ChooserFaultTest, LookingANameUp)
{
    store.raise("getSidByNameW", GetParam());
    script.onDialog("add", [](HWND dialog) {
        click(dialog, IDC_CHOOSER_TYPE);
        type(dialog, IDC_CHOOSER_NAME, L"alice");
        click(dialog, IDOK);
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_EQ(controlText(dialog, IDC_CHOOSER_NAME), "alice");
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(guardLines(), 1);
}

TEST_P(ChooserFaultTest, CopyingTheChosenAccount)
{
    giveUsers({"DOM\\alice"});
    searchServer();
    script.onDialog("add", [this](HWND dialog) {
        store.raise("sidDup", GetParam());
        select(dialog, 1);
        click(dialog, IDOK);
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_EQ(guardLines(), 1);
        click(dialog, IDOK);
    });
    void* const chosen = choose();
    EXPECT_EQ(RecordingStore::nameOf(chosen), "DOM\\alice") << "a second try is as good as the first";
    std::free(chosen);
    EXPECT_EQ(guardLines(), 1);
}

TEST_P(ChooserFaultTest, TheLineOfThePick)
{
    searchServer();
    script.onDialog("add", [this](HWND dialog) {
        select(dialog, 0);
        store.raise("ODS", GetParam());
        click(dialog, IDOK);
        EXPECT_TRUE(IsWindow(dialog));
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(guardLines(), 1);
}

TEST_P(ChooserFaultTest, TheFillThreadGoesOnWithItsOwnLines)
{
    giveUsers({"DOM\\alice"});
    giveGroups({"DOM\\staff"});
    store.raise("enumerateUsers", GetParam());
    searchServer();
    script.onDialog("look", [](HWND dialog) {
        EXPECT_EQ(rows(dialog), (std::vector<std::string>{"Anyone|Anyone|System", "alice|DOM\\alice|User",
                                                          "staff|DOM\\staff|Group"}));
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.lines(), Contains("enumerateUsers(domain) => sigsegv\n"));
    EXPECT_EQ(guardLines(), 0);
}

TEST_P(ChooserFaultTest, AFillThatFaultsOutsideOfItsStepsEndsWithItsThreadsLine)
{
    store.raise("createEmptySidList", GetParam());
    searchServer();
    script.onDialog("look", [](HWND dialog) {
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_LIST));
        EXPECT_EQ(cell(dialog, 0, 0), kWaitText) << "the list keeps what it got";
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.lines(), Contains("fillTree => sigsegv\n"));
}

namespace {
Fault enablingFault = Fault::None;
bool faultNext = false;

BOOL WINAPI enableOrFault(HWND window, BOOL enabled)
{
    if (enabled && faultNext && GetDlgCtrlID(window) == IDCANCEL) {
        faultNext = false;
        if (enablingFault == Fault::CppException) {
            throw std::runtime_error("raised by the test");
        }
        RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
    }
    return EnableWindow(window, enabled);
}
} // namespace

TEST_P(ChooserFaultTest, EnablingTheDialogAgainHasALineOfItsOwn)
{
    enablingFault = GetParam();
    faultNext = true;
    const ImportPatch enabling(ImportPatch::corvane(), "EnableWindow", &enableOrFault);
    ASSERT_EQ(enabling.count(), 1);
    startSearch();
    script.step("the line", [this](HWND dialog) {
        const std::vector<std::string> lines = store.lines();
        if (std::count(lines.begin(), lines.end(), "fillTree => sigsegv at UI mgr\n") == 0) {
            return false;
        }
        EXPECT_FALSE(isEnabled(dialog, IDCANCEL));
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        return true;
    });
    EXPECT_EQ(choose(), nullptr);
    EXPECT_EQ(guardLines(), 0);
}
