// Rules that are not added after all: conflicts, Cancel, nothing to show or to store them with.
#include "tests/quota/list_add_test.h"

#include "res/resource.h"
#include "tests/support/describe.h"
#include "tests/support/hidden_dialog.h"
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

namespace {

constexpr char kAlreadyUsed[] =
    "Limit you've specified is already used. Please change user/group or specify other folder.";
constexpr char kNoResources[] = "Not enough resources. Please try to re-run Vantrel Control Panel, and close "
                                "unnecessary programs.";

} // namespace

TEST_F(ListAddTest, TheSameRuleIsRefused)
{
    addWithOk(alice, Paths{L"C:\\data"}, 1);
    store.takeCalls();
    DialogScript script;
    script.answerBox(kAlreadyUsed, kInformation);
    EXPECT_NE(add(script, alice, Paths{L"C:\\data"}), 0);
    EXPECT_EQ(script.boxOwner(), host.window()) << "the header's top-level window";
    EXPECT_EQ(host.rowCount(), 1);
    EXPECT_THAT(store.calls(),
                ElementsAre("debug {alice C:\\data}", "sidcmp alice alice", "debug {alice C:/data}"));
}

TEST_F(ListAddTest, TheSameFolderInAnotherSpellingIsRefused)
{
    addWithOk(alice, Paths{L"C:\\Data\\Folder"}, 1);
    for (const wchar_t* const spelling : {L"c:/data/FOLDER", L"C:\\data\\folder", L"C:/DATA\\Folder"}) {
        DialogScript script;
        script.answerBox(kAlreadyUsed, kInformation);
        EXPECT_NE(add(script, alice, Paths{spelling}), 0);
    }
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, SlashesAreRewrittenInPlaceWhenAccountsAreEqual)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    addWithOk(alice, Paths{L"C:\\one"}, 1);
    const Paths paths{L"C:\\two\\deep"};
    addWithOk(alice, paths, 1);
    EXPECT_EQ(paths[0], L"C:/two/deep");
    EXPECT_STREQ(host.record(1)->path, L"C:/one");
    EXPECT_STREQ(host.record(0)->path, L"C:/two/deep") << "copied afterwards";
    EXPECT_THAT(host.column(5), ElementsAre("C:/two/deep", "C:\\one"))
        << "the row that was there is left alone";
}

TEST_F(ListAddTest, SlashesStayWhenAccountsDiffer)
{
    addWithOk(alice, Paths{L"C:\\data"}, 1);
    const Paths paths{L"C:\\data"};
    EXPECT_NE(addWithOk(bob, paths, 1), 0);
    EXPECT_EQ(paths[0], L"C:\\data");
    EXPECT_NE(addWithOk(nullptr, paths, 1), 0);
    EXPECT_EQ(paths[0], L"C:\\data");
    EXPECT_THAT(host.column(5), ElementsAre("C:\\data", "C:\\data", "C:\\data"));
    EXPECT_THAT(chainTexts(chain()), ElementsAre("Anyone C:\\data", "bob C:\\data", "alice C:\\data"));
}

TEST_F(ListAddTest, EveryConflictHasItsOwnBox)
{
    store.put(L"C:\\data", nullptr, 2048, 1024, 0);
    store.put(L"C:\\data", nullptr, 4096, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\data"}, host.object());
    DialogScript script;
    script.answerBox(kAlreadyUsed, kInformation).answerBox(kAlreadyUsed, kInformation);
    EXPECT_NE(add(script, nullptr, Paths{L"C:\\data"}), 0);
    EXPECT_EQ(host.rowCount(), 2);
}

TEST_F(ListAddTest, AConflictSkipsThatFolderAlone)
{
    addWithOk(nullptr, Paths{L"C:\\a"}, 1);
    DialogScript script;
    script.answerBox(kAlreadyUsed, kInformation).onDialog("OK", pressOk);
    EXPECT_NE(add(script, nullptr, Paths{L"C:\\a", L"C:\\b"}), 0);
    EXPECT_THAT(host.column(5), ElementsAre("C:/b", "C:\\a"));
}

TEST_F(ListAddTest, AFolderGivenTwiceConflictsWithItself)
{
    DialogScript script;
    script.onDialog("OK", pressOk).answerBox(kAlreadyUsed, kInformation);
    EXPECT_NE(add(script, nullptr, Paths{L"C:\\a", L"C:\\A"}), 0);
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, LettersOfAllAlphabetsHaveTwoCases)
{
    DialogScript script;
    script.onDialog("OK", pressOk)
        .answerBox(kAlreadyUsed, kInformation)
        .answerBox(kAlreadyUsed, kInformation);
    EXPECT_NE(add(script, nullptr,
                  Paths{L"C:\\\u00dcbung \u0416", L"c:/\u00fcbung \u0436", L"C:/\u00dcBUNG \u0416"}),
              0);
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, CancelTakesTheRowAway)
{
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    DialogScript script;
    script.onDialog("Cancel", pressCancel);
    EXPECT_EQ(add(script, nullptr, Paths{L"C:\\data"}), 0);
    EXPECT_THAT(host.column(5), ElementsAre("C:\\old"));
    EXPECT_THAT(chainTexts(chain()), ElementsAre("bob C:\\old")) << "mended when it is handed back";
}

TEST_F(ListAddTest, CancelEndsTheChain)
{
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    store.takeCalls();
    DialogScript script;
    script.onDialog("Cancel", pressCancel);
    add(script, nullptr, Paths{L"C:\\data"});
    EXPECT_THAT(store.calls(),
                ElementsAre("debug {bob C:\\old}", "sidcmp null bob", "debug {Anyone C:\\data}",
                            "getRealSize C:\\data", "debug null", "debug null"));
}

TEST_F(ListAddTest, CancelInABatchStartsANewChain)
{
    store.put(L"C:\\old", nullptr, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    DialogScript script;
    script.onDialog("Cancel", pressCancel)
        .onDialog("no conflict is seen any more", pressOk)
        .onDialog("OK", pressOk);
    EXPECT_EQ(add(script, nullptr, Paths{L"C:\\a", L"C:\\old", L"C:\\b"}), 0);
    EXPECT_THAT(host.column(5), ElementsAre("C:/b", "C:\\old", "C:\\old"));
    EXPECT_EQ(store.calls().back(), "debug {Anyone C:/b, Anyone C:/old}");
    EXPECT_THAT(chainTexts(chain()), ElementsAre("Anyone C:/b", "Anyone C:/old", "Anyone C:/old"));
}

TEST_F(ListAddTest, CancellingTheLastOfABatchGivesFalse)
{
    DialogScript script;
    script.onDialog("OK", pressOk).onDialog("Cancel", pressCancel);
    EXPECT_EQ(add(script, alice, Paths{L"C:\\a", L"C:\\b"}), 0);
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, WithoutFoldersNothingIsDone)
{
    store.put(L"C:\\old", bob, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    store.takeCalls();
    EXPECT_NE(addToListCtrl2(host.object(), nullptr, nullptr), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
    EXPECT_NE(addToListCtrl2(host.object(), nullptr, Paths{}), 0);
    EXPECT_THAT(store.calls(), ElementsAre("debug {bob C:\\old}", "debug {bob C:\\old}"));
    EXPECT_THAT(host.column(5), ElementsAre("C:\\old"));
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("bob C:\\old"));
}

TEST_F(ListAddTest, ADialogThatCannotBeShownCountsAsCancelled)
{
    const HiddenDialog all;
    EXPECT_EQ(addToListCtrl2(host.object(), nullptr, Paths{L"C:\\a", L"C:\\b"}), 0);
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_EQ(chain(), nullptr);
}

TEST_F(ListAddTest, TheListsWindowOwnsTheDialog)
{
    DialogScript script;
    script
        .onDialog("look",
                  [this](HWND dialog) {
                      EXPECT_EQ(GetWindow(dialog, GW_OWNER), host.window());
                      EXPECT_FALSE(IsWindowEnabled(host.window()));
                  })
        .onDialog("OK", pressOk);
    add(script, nullptr, Paths{L"C:\\a"});
    EXPECT_TRUE(IsWindowEnabled(host.window()));
}

TEST_F(ListAddTest, AListWithoutAChildOwnsNothing)
{
    store.put(L"C:\\old", nullptr, 2048, 1024, 0);
    fillUpListCtrl2(Paths{L"C:\\old"}, host.object());
    DestroyWindow(host.header());
    ASSERT_EQ(GetTopWindow(host.list()), nullptr);
    DialogScript script;
    script.answerBox(kAlreadyUsed, kInformation)
        .onDialog("look", [](HWND dialog) { EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr); })
        .onDialog("OK", pressOk);
    EXPECT_NE(add(script, nullptr, Paths{L"C:\\old", L"C:\\new"}), 0);
    EXPECT_EQ(script.boxOwner(), nullptr);
    EXPECT_EQ(host.rowCount(), 2);
}

namespace {

/// What was shown instead of a box.
std::vector<std::string> boxes;
HWND boxOwner = nullptr;

int WINAPI noteBox(HWND owner, const char* text, const char* caption, UINT style)
{
    boxes.push_back(std::string(caption) + ": " + text + " (" + std::to_string(style) + ")");
    boxOwner = owner;
    return IDOK;
}

void* refuseRecords(size_t size)
{
    return size == sizeof(QuotaRule) ? nullptr : std::malloc(size);
}

std::vector<std::string> heapCalls;
int heapState = _HEAPOK;
int noteCheck()
{
    heapCalls.push_back("check");
    return heapState;
}
int noteMinimize()
{
    heapCalls.push_back("minimize");
    return 0;
}

} // namespace

TEST_F(ListAddTest, BoxesArePlainAndBelongToTheHeader)
{
    addWithOk(nullptr, Paths{L"C:\\a"}, 1);
    const ImportPatch box(ImportPatch::corvane(), "MessageBoxA", noteBox);
    ASSERT_EQ(box.count(), 1);
    boxes.clear();
    EXPECT_NE(addToListCtrl2(host.object(), nullptr, Paths{L"C:\\a"}), 0);
    EXPECT_THAT(
        boxes, ElementsAre(std::string("Information: ") + kAlreadyUsed + " (" + std::to_string(MB_OK) + ")"));
    EXPECT_EQ(boxOwner, host.header());
}

TEST_F(ListAddTest, WithoutMemoryTheFolderIsSkipped)
{
    const ImportPatch memory(ImportPatch::corvane(), "malloc", refuseRecords);
    ASSERT_EQ(memory.count(), 1);
    DialogScript script;
    script.answerBox(kNoResources, kInformation).answerBox(kNoResources, kInformation);
    EXPECT_NE(add(script, nullptr, Paths{L"C:\\a", L"C:\\b"}), 0);
    EXPECT_EQ(script.boxOwner(), host.window());
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_THAT(store.calls(), Contains("debug null"));
    EXPECT_THAT(store.calls(), testing::Not(Contains("getRealSize C:\\a")));
}

TEST_F(ListAddTest, UnusedHeapIsGivenBackAfterACheck)
{
    const ImportPatch check(ImportPatch::corvane(), "_heapchk", noteCheck);
    const ImportPatch minimize(ImportPatch::corvane(), "_heapmin", noteMinimize);
    ASSERT_EQ(check.count(), 1);
    ASSERT_EQ(minimize.count(), 1);
    heapCalls.clear();
    heapState = _HEAPOK;
    addWithOk(nullptr, Paths{L"C:\\a", L"C:\\b"}, 2);
    EXPECT_THAT(heapCalls, ElementsAre("check", "minimize", "check", "minimize"));
    heapCalls.clear();
    const auto copy = store.answer.sidDup;
    store.answer.sidDup = [copy](const void* sid) {
        heapCalls.emplace_back("copy of the account");
        return copy(sid);
    };
    addWithOk(alice, Paths{L"C:\\d"}, 1);
    ASSERT_GE(heapCalls.size(), 3u);
    EXPECT_EQ(heapCalls[0], "check");
    EXPECT_EQ(heapCalls[1], "minimize");
    EXPECT_EQ(heapCalls[2], "copy of the account");
    store.answer.sidDup = copy;
    heapCalls.clear();
    heapState = _HEAPBADNODE;
    addWithOk(nullptr, Paths{L"C:\\c"}, 1);
    EXPECT_THAT(heapCalls, ElementsAre("check"));
}

TEST_F(ListAddTest, ShowsTheWaitCursorWhileMeasuringSeveralFolders)
{
    const HCURSOR wait = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_WAIT));
    int measured = 0;
    store.answer.getRealSize = [&](const wchar_t*) -> int64_t {
        EXPECT_EQ(GetCursor(), wait);
        ++measured;
        return 0;
    };
    SetCursor(LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW)));
    addWithOk(nullptr, Paths{L"C:\\a", L"C:\\b"}, 2);
    EXPECT_EQ(measured, 4);
    EXPECT_NE(GetCursor(), wait);
}

TEST_F(ListAddTest, AnUnshownDialogIsDumpedAsNothing)
{
    const HiddenDialog all;
    addToListCtrl2(host.object(), nullptr, Paths{L"C:\\a"});
    EXPECT_THAT(store.calls(), ElementsAre("debug {Anyone C:\\a}", "debug null", "debug null"));
}
