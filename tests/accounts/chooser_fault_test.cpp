// Faults of the store and of the platform under the dialog.
#include "tests/accounts/chooser_fixture.h"

#include "store/lornix.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <utility>

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
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Each, ChooserFaultTest, testing::ValuesIn(kEveryFault),
                         testing::PrintToStringParamName());

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

TEST_P(ChooserFaultTest, TheChoiceSurvivesTheLineAboutIt)
{
    store.raise("ODS", GetParam(), 2); // "got R1", after the one about the domain
    script.onDialog("choose", [](HWND dialog) {
        click(dialog, IDC_CHOOSER_TYPE);
        type(dialog, IDC_CHOOSER_NAME, L"Anyone");
        click(dialog, IDOK);
    });
    EXPECT_EQ(choose(), CORVANE_ANYONE);
    EXPECT_EQ(guardLines(), 0);
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
        EXPECT_EQ(list(dialog).rows(),
                  (std::vector<std::string>{"Anyone|Anyone|System", "alice|DOM\\alice|User",
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
        EXPECT_EQ(list(dialog).text(0, 0), kWaitText) << "the list keeps what it got";
    });
    cancel();
    EXPECT_EQ(choose(), nullptr);
    EXPECT_THAT(store.lines(), Contains("fillTree => sigsegv\n"));
}

namespace {
Fault enablingFault = Fault::kNone;
bool faultNext = false;

BOOL WINAPI enableOrFault(HWND window, BOOL enabled)
{
    if (enabled && faultNext && GetDlgCtrlID(window) == IDCANCEL) {
        faultNext = false;
        if (enablingFault == Fault::kCppException) {
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

namespace {

/// A list that cannot take a row of a certain account.
class FailingList {
public:
    enum class Way : std::uint8_t { kFaults, kRefuses };

    FailingList(HWND list, std::wstring account, Way way)
        : m_account(std::move(account))
        , m_way(way)
    {
        present = this;
        m_before = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&procedure)));
    }
    ~FailingList() { present = nullptr; }
    FailingList(const FailingList&) = delete;
    FailingList& operator=(const FailingList&) = delete;

    WNDPROC before() const { return m_before; }

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == LVM_INSERTITEMW && present->m_account == reinterpret_cast<LVITEMW*>(lParam)->pszText) {
            if (present->m_way == Way::kRefuses) {
                return -1;
            }
            RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
        }
        return CallWindowProcW(present->m_before, window, message, wParam, lParam);
    }

    static inline FailingList* present = nullptr;
    std::wstring m_account;
    Way m_way;
    WNDPROC m_before;
};

class ListFaultTest : public ChooserFixture {
protected:
    void failAt(const wchar_t* account, FailingList::Way way)
    {
        script.onDialog("a list that fails", [this, account, way](HWND dialog) {
            m_failing = std::make_unique<FailingList>(list(dialog), account, way);
        });
    }
    static bool isDrawing(HWND dialog)
    {
        return (GetWindowLongPtrW(list(dialog), GWL_STYLE) & WS_VISIBLE) != 0;
    }

private:
    std::unique_ptr<FailingList> m_failing;
};

const std::vector<std::string> kWithoutBob = {"Anyone|Anyone|System", "alice|DOM\\alice|User",
                                              "carol|DOM\\carol|User", "staff|DOM\\staff|Group"};

} // namespace

TEST_F(ListFaultTest, AListThatFaultsAtARowHasTheOthers)
{
    giveUsers({"DOM\\alice", "DOM\\bob", "DOM\\carol"});
    giveGroups({"DOM\\staff"});
    failAt(L"bob", FailingList::Way::kFaults);
    searchServer();
    script.onDialog("look", [](HWND dialog) {
        EXPECT_EQ(list(dialog).rows(), kWithoutBob);
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_LIST));
        EXPECT_TRUE(isDrawing(dialog));
        click(dialog, IDCANCEL);
    });
    EXPECT_EQ(choose(), nullptr);
    const std::vector<std::string> lines = store.lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "fillTree => sigsegv\n"), 1);
    EXPECT_THAT(lines, Not(Contains(kLine)));
}

TEST_F(ListFaultTest, ARowThatTheListRefusesIsReleased)
{
    giveUsers({"DOM\\alice", "DOM\\bob", "DOM\\carol"});
    giveGroups({"DOM\\staff"});
    static void* copyOfBob = nullptr;
    static bool released = false;
    copyOfBob = nullptr;
    released = false;
    const auto copy = store.answer.sidDup;
    store.answer.sidDup = [copy](const void* sid) {
        void* const made = copy(sid);
        if (RecordingStore::nameOf(sid) == "DOM\\bob") {
            copyOfBob = made;
        }
        return made;
    };
    const ImportPatch releases(
        ImportPatch::corvane(), "free", +[](void* block) {
            released = released || (block != nullptr && block == copyOfBob);
            std::free(block);
        });
    ASSERT_EQ(releases.count(), 1);
    failAt(L"bob", FailingList::Way::kRefuses);
    searchServer();
    script.onDialog("look", [](HWND dialog) {
        EXPECT_EQ(list(dialog).rows(), kWithoutBob);
        EXPECT_NE(copyOfBob, nullptr);
        EXPECT_TRUE(released);
        click(dialog, IDCANCEL);
    });
    EXPECT_EQ(choose(), nullptr);
}

TEST_F(ListFaultTest, ARowThatTheListDoesNotTakeBackStaysHidden)
{
    giveUsers({"DOM\\alice", "DOM\\bob", "DOM\\carol"});
    searchServer();
    script.onDialog("hide all but carol, then let them come back", [this](HWND dialog) {
        filterBar->type(0, L"c");
        EXPECT_EQ(list(dialog).rowCount(), 1);
        {
            const FailingList failing(list(dialog), L"bob", FailingList::Way::kRefuses);
            filterBar->type(0, L"");
            EXPECT_THAT(list(dialog).column(0), testing::UnorderedElementsAre("Anyone", "alice", "carol"));
            SetWindowLongPtrW(list(dialog), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(failing.before()));
        }
        filterBar->type(0, L"bo");
        EXPECT_THAT(list(dialog).column(0), testing::ElementsAre("bob")) << "nothing is lost";
        click(dialog, IDCANCEL);
    });
    EXPECT_EQ(choose(), nullptr);
}

TEST_F(ListFaultTest, OwnersThatCannotBeReadLeaveADialogThatCloses)
{
    auto* const owners = reinterpret_cast<SidList*>(UINT_PTR{0x10});
    searchServer();
    script.onDialog("look", [](HWND dialog) {
        EXPECT_TRUE(isEnabled(dialog, IDC_CHOOSER_LIST));
        click(dialog, IDCANCEL);
    });
    EXPECT_EQ(choose(owners), nullptr);
    EXPECT_THAT(store.lines(), Contains("fillTree => sigsegv\n"));
    EXPECT_THAT(store.lines(), Not(Contains(kLine)));
}
