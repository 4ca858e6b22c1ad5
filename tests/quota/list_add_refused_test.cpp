// Rules that are not added after all: conflicts, Cancel, nothing to show or to store them with.
#include "tests/quota/list_add_test.h"

#include "res/resource.h"
#include "tests/support/describe.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/rule_memory.h"

#include <commctrl.h>
#include <malloc.h>

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ListAddTest, TheSameRuleIsRefused)
{
    addWithOk(alice, {L"C:\\data"});
    store.takeCalls();
    Visit visit;
    visit.conflict();
    EXPECT_TRUE(add(alice, {L"C:\\data"}, visit));
    EXPECT_EQ(visit.boxOwner(), host.window()) << "the header's top-level window";
    EXPECT_EQ(host.rowCount(), 1);
    EXPECT_THAT(store.calls(),
                ElementsAre("debug {alice C:\\data}", "sidcmp alice alice", "debug {alice C:/data}"));
}

TEST_F(ListAddTest, TheSameFolderInAnotherSpellingIsRefused)
{
    addWithOk(alice, {L"C:\\Data\\Folder"});
    for (const wchar_t* const spelling : {L"c:/data/FOLDER", L"C:\\data\\folder", L"C:/DATA\\Folder"}) {
        EXPECT_TRUE(add(alice, {spelling}, Visit().conflict()));
    }
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, SlashesAreRewrittenInPlaceWhenAccountsAreEqual)
{
    const rule_memory::LibraryRecords readable(rule_memory::below4GiB);
    addWithOk(alice, {L"C:\\one"});
    const Paths paths{L"C:\\two\\deep"};
    addWithOk(alice, paths);
    EXPECT_EQ(paths[0], L"C:/two/deep");
    EXPECT_STREQ(host.record(1)->path, L"C:/one");
    EXPECT_STREQ(host.record(0)->path, L"C:/two/deep") << "copied afterwards";
    EXPECT_THAT(host.column(5), ElementsAre("C:/two/deep", "C:\\one"))
        << "the row that was there is left alone";
}

TEST_F(ListAddTest, SlashesStayWhenAccountsDiffer)
{
    addWithOk(alice, {L"C:\\data"});
    const Paths paths{L"C:\\data"};
    EXPECT_TRUE(addWithOk(bob, paths));
    EXPECT_EQ(paths[0], L"C:\\data");
    EXPECT_TRUE(addWithOk(nullptr, paths));
    EXPECT_EQ(paths[0], L"C:\\data");
    EXPECT_THAT(host.column(5), ElementsAre("C:\\data", "C:\\data", "C:\\data"));
    EXPECT_THAT(chained(), ElementsAre("Anyone C:\\data", "bob C:\\data", "alice C:\\data"));
}

TEST_F(ListAddTest, EveryConflictHasItsOwnBox)
{
    store.put(L"C:\\data", nullptr, 2048, 1024, 0);
    show(L"C:\\data", nullptr, 4096, 1024, 0);
    EXPECT_TRUE(add(nullptr, {L"C:\\data"}, Visit().conflict().conflict()));
    EXPECT_EQ(host.rowCount(), 2);
}

TEST_F(ListAddTest, AConflictSkipsThatFolderAlone)
{
    addWithOk(nullptr, {L"C:\\a"});
    EXPECT_TRUE(add(nullptr, {L"C:\\a", L"C:\\b"}, Visit().conflict().ok()));
    EXPECT_THAT(host.column(5), ElementsAre("C:/b", "C:\\a"));
}

TEST_F(ListAddTest, AFolderGivenTwiceConflictsWithItself)
{
    EXPECT_TRUE(add(nullptr, {L"C:\\a", L"C:\\A"}, Visit().ok().conflict()));
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, LettersOfAllAlphabetsHaveTwoCases)
{
    EXPECT_TRUE(add(nullptr, {L"C:\\\u00dcbung \u0416", L"c:/\u00fcbung \u0436", L"C:/\u00dcBUNG \u0416"},
                    Visit().ok().conflict().conflict()));
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, CancelTakesTheRowAway)
{
    show(L"C:\\old", bob);
    EXPECT_FALSE(add(nullptr, {L"C:\\data"}, Visit().cancel()));
    EXPECT_THAT(host.column(5), ElementsAre("C:\\old"));
    EXPECT_THAT(chained(), ElementsAre("bob C:\\old")) << "mended when it is handed back";
}

TEST_F(ListAddTest, CancelEndsTheChain)
{
    show(L"C:\\old", bob);
    store.takeCalls();
    add(nullptr, {L"C:\\data"}, Visit().cancel());
    EXPECT_THAT(store.calls(),
                ElementsAre("debug {bob C:\\old}", "sidcmp null bob", "debug {Anyone C:\\data}",
                            "getRealSize C:\\data", "debug null", "debug null"));
}

TEST_F(ListAddTest, CancelInABatchStartsANewChain)
{
    show(L"C:\\old", nullptr);
    EXPECT_FALSE(add(nullptr, {L"C:\\a", L"C:\\old", L"C:\\b"}, Visit().cancel().ok().ok()));
    EXPECT_THAT(host.column(5), ElementsAre("C:/b", "C:\\old", "C:\\old"));
    EXPECT_EQ(store.calls().back(), "debug {Anyone C:/b, Anyone C:/old}");
    EXPECT_THAT(chained(), ElementsAre("Anyone C:/b", "Anyone C:/old", "Anyone C:/old"));
}

TEST_F(ListAddTest, CancellingTheLastOfABatchGivesFalse)
{
    EXPECT_FALSE(add(alice, {L"C:\\a", L"C:\\b"}, Visit().ok().cancel()));
    EXPECT_EQ(host.rowCount(), 1);
}

TEST_F(ListAddTest, WithoutFoldersNothingIsDone)
{
    show(L"C:\\old", bob);
    store.takeCalls();
    EXPECT_NE(addToListCtrl2(host.object(), nullptr, nullptr), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
    EXPECT_TRUE(addWithOk(nullptr, {}));
    EXPECT_THAT(store.calls(), ElementsAre("debug {bob C:\\old}", "debug {bob C:\\old}"));
    EXPECT_THAT(host.column(5), ElementsAre("C:\\old"));
    EXPECT_THAT(chainTexts(host.record(0)), ElementsAre("bob C:\\old"));
}

TEST_F(ListAddTest, ADialogThatCannotBeShownCountsAsCancelled)
{
    const HiddenDialog all;
    EXPECT_FALSE(add(nullptr, {L"C:\\a", L"C:\\b"}));
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_EQ(chain(), nullptr);
}

TEST_F(ListAddTest, TheListsWindowOwnsTheDialog)
{
    add(nullptr, {L"C:\\a"}, Visit().ok([this](HWND dialog) {
        EXPECT_EQ(GetWindow(dialog, GW_OWNER), host.window());
        EXPECT_FALSE(IsWindowEnabled(host.window()));
    }));
    EXPECT_TRUE(IsWindowEnabled(host.window()));
}

TEST_F(ListAddTest, AListWithoutAChildOwnsNothing)
{
    show(L"C:\\old", nullptr);
    DestroyWindow(host.header());
    ASSERT_EQ(GetTopWindow(host.list()), nullptr);
    Visit visit;
    visit.conflict().ok([](HWND dialog) { EXPECT_EQ(GetWindow(dialog, GW_OWNER), nullptr); });
    EXPECT_TRUE(add(nullptr, {L"C:\\old", L"C:\\new"}, visit));
    EXPECT_EQ(visit.boxOwner(), nullptr);
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
    addWithOk(nullptr, {L"C:\\a"});
    const ImportPatch box(ImportPatch::corvane(), "MessageBoxA", noteBox);
    ASSERT_EQ(box.count(), 1);
    boxes.clear();
    EXPECT_TRUE(add(nullptr, {L"C:\\a"}));
    EXPECT_THAT(boxes, ElementsAre(std::string("Information: ") + kAlreadyUsed + " (0)"));
    EXPECT_EQ(boxOwner, host.header());
}

TEST_F(ListAddTest, WithoutMemoryTheFolderIsSkipped)
{
    const ImportPatch memory(ImportPatch::corvane(), "malloc", refuseRecords);
    ASSERT_EQ(memory.count(), 1);
    Visit visit;
    visit.noResources().noResources();
    EXPECT_TRUE(add(nullptr, {L"C:\\a", L"C:\\b"}, visit));
    EXPECT_EQ(visit.boxOwner(), host.window());
    EXPECT_EQ(host.rowCount(), 0);
    EXPECT_THAT(store.calls(), Contains("debug null"));
    EXPECT_THAT(store.callsWith("getRealSize"), IsEmpty());
}

TEST_F(ListAddTest, UnusedHeapIsGivenBackAfterACheck)
{
    const ImportPatch check(ImportPatch::corvane(), "_heapchk", noteCheck);
    const ImportPatch minimize(ImportPatch::corvane(), "_heapmin", noteMinimize);
    ASSERT_EQ(check.count(), 1);
    ASSERT_EQ(minimize.count(), 1);
    heapCalls.clear();
    heapState = _HEAPOK;
    addWithOk(nullptr, {L"C:\\a", L"C:\\b"});
    EXPECT_THAT(heapCalls, ElementsAre("check", "minimize", "check", "minimize"));
    heapCalls.clear();
    const auto copy = store.answer.sidDup;
    store.answer.sidDup = [copy](const void* sid) {
        heapCalls.emplace_back("copy of the account");
        return copy(sid);
    };
    addWithOk(alice, {L"C:\\d"});
    heapCalls.resize(3);
    EXPECT_THAT(heapCalls, ElementsAre("check", "minimize", "copy of the account"));
    store.answer.sidDup = copy;
    heapCalls.clear();
    heapState = _HEAPBADNODE;
    addWithOk(nullptr, {L"C:\\c"});
    EXPECT_THAT(heapCalls, ElementsAre("check"));
}

TEST_F(ListAddTest, ShowsTheWaitCursorWhileMeasuringSeveralFolders)
{
    int measured = 0;
    store.answer.getRealSize = [&](const wchar_t*) -> int64_t {
        EXPECT_TRUE(showsWaitCursor());
        ++measured;
        return 0;
    };
    SetCursor(nullptr);
    addWithOk(nullptr, {L"C:\\a", L"C:\\b"});
    EXPECT_EQ(measured, 4);
    EXPECT_FALSE(showsWaitCursor());
}

TEST_F(ListAddTest, AnUnshownDialogIsDumpedAsNothing)
{
    const HiddenDialog all;
    add(nullptr, {L"C:\\a"});
    EXPECT_THAT(store.calls(), ElementsAre("debug {Anyone C:\\a}", "debug null", "debug null"));
}
