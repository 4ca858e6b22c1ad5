// The list functions that take a dialog and a control number.
#include "tests/quota/quota_settings.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

struct ListByIdTest : testing::Test {
    RecordingStore store;
    ListHost host;
    void SetUp() override { initializeListCtrl(host.window(), ListHost::kListId, nullptr); }

    std::vector<std::string> callsAboutFolders() const
    {
        std::vector<std::string> calls;
        for (const std::string& call : store.calls()) {
            if (call.find("Path") != std::string::npos) {
                calls.push_back(call);
            }
        }
        return calls;
    }

    unsigned char add(const PathList* paths, DialogScript& script, void* sid = nullptr)
    {
        return script.run([=, this] { return addToListCtrl(host.window(), ListHost::kListId, sid, paths); });
    }
};

} // namespace

TEST_F(ListByIdTest, Prepare)
{
    EXPECT_EQ(Header_GetItemCount(host.header()), 6);
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    initializeListCtrl(host.window(), ListHost::kListId, Paths{L"C:\\a"});
    EXPECT_EQ(countItems(host.window(), ListHost::kListId), 1);
}

TEST_F(ListByIdTest, FillEditDropSortAndHandBack)
{
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    store.put(L"C:\\b", nullptr, 4096, 1024, 0);
    fillUpListCtrl(Paths{L"C:\\a", L"C:\\b"}, host.window(), ListHost::kListId);
    EXPECT_EQ(countItems(host.window(), ListHost::kListId), 2);
    EXPECT_EQ(getDataModified(host.window(), ListHost::kListId), host.record(0));

    sortListCtrl(host.window(), ListHost::kListId, 4);
    sortListCtrl(host.window(), ListHost::kListId, 1);
    EXPECT_THAT(host.column(5), ElementsAre("C:\\a", "C:\\b"));

    host.selectOnly({1});
    DialogScript script;
    script.onDialog("type", [](HWND dialog) { typeLimits(dialog, L"9K", L"8K"); }).onDialog("OK", pressOk);
    EXPECT_NE(script.run([this] { return editFromListCtrl(host.window(), ListHost::kListId); }), 0);
    EXPECT_EQ(host.row(1), "Anyone|9216 |8192 |0 |00%|C:\\b");

    EXPECT_NE(dropFromListCtrl(host.window(), ListHost::kListId), 0);
    EXPECT_THAT(host.column(5), ElementsAre("C:\\a"));
    EXPECT_EQ(dropFromListCtrl(host.window(), ListHost::kListId), 0);
    EXPECT_TRUE(IsWindow(host.list())) << "the control outlives the call";
}

TEST_F(ListByIdTest, AddingMakesTheFoldersKnown)
{
    DialogScript script;
    script.onDialog("OK", pressOk).onDialog("OK", pressOk);
    EXPECT_NE(add(Paths{L"C:\\a", L"C:\\b"}, script), 0);
    EXPECT_THAT(callsAboutFolders(),
                ElementsAre("getKnownPaths", "appendToPaths null C:\\a", "appendToPaths [C:\\a] C:/b",
                            "storeKnownPaths [C:\\a, C:/b]", "freePathList [C:\\a, C:/b]"))
        << "the second folder was compared with the first rule, for the same account";
    EXPECT_EQ(store.openPathLists(), 0);
    EXPECT_EQ(store.calls().back(), "freePathList [C:\\a, C:/b]") << "after all the rest";
}

TEST_F(ListByIdTest, AddingAppendsToTheKnownFolders)
{
    const auto append = store.answer.appendToPaths;
    store.answer.getKnownPaths = [append] {
        return append(nullptr, L"C:\\known");
    };
    DialogScript script;
    script.onDialog("OK", pressOk);
    add(Paths{L"C:\\a"}, script);
    EXPECT_THAT(callsAboutFolders(),
                ElementsAre("getKnownPaths", "appendToPaths [C:\\known] C:\\a",
                            "storeKnownPaths [C:\\known, C:\\a]", "freePathList [C:\\known, C:\\a]"));
}

TEST_F(ListByIdTest, CancellingOneFolderMakesNoneKnown)
{
    DialogScript script;
    script.onDialog("OK", pressOk).onDialog("Cancel", pressCancel).onDialog("OK", pressOk);
    EXPECT_EQ(add(Paths{L"C:\\a", L"C:\\b", L"C:\\c"}, script), 0);
    EXPECT_THAT(callsAboutFolders(), IsEmpty());
}

TEST_F(ListByIdTest, AFolderThatIsPassedOverIsMadeKnownAllTheSame)
{
    DialogScript first;
    first.onDialog("OK", pressOk);
    add(Paths{L"C:\\a"}, first);
    store.takeCalls();
    DialogScript second;
    second.answerBox(
        "Limit you've specified is already used. Please change user/group or specify other folder.",
        "Information");
    EXPECT_NE(add(Paths{L"C:\\a"}, second), 0);
    EXPECT_THAT(callsAboutFolders(), ElementsAre("getKnownPaths", "appendToPaths null C:/a",
                                                 "storeKnownPaths [C:/a]", "freePathList [C:/a]"));
}

TEST_F(ListByIdTest, AddingForNoFolderStoresTheKnownOnesAgain)
{
    const auto append = store.answer.appendToPaths;
    const Paths empty{};
    for (const PathList* none : {static_cast<const PathList*>(nullptr), static_cast<const PathList*>(empty)})
    {
        store.answer.getKnownPaths = [append] {
            return append(nullptr, L"C:\\known");
        };
        DialogScript script;
        EXPECT_NE(add(none, script), 0);
        EXPECT_THAT(callsAboutFolders(),
                    ElementsAre("getKnownPaths", "storeKnownPaths [C:\\known]", "freePathList [C:\\known]"));
        store.takeCalls();
        store.answer.getKnownPaths = [] {
            return nullptr;
        };
        EXPECT_NE(add(none, script), 0);
        EXPECT_THAT(callsAboutFolders(),
                    ElementsAre("getKnownPaths", "storeKnownPaths null", "freePathList null"));
        store.takeCalls();
    }
}

TEST_F(ListByIdTest, NoFolderFillsNothing)
{
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    fillUpListCtrl(Paths{L"C:\\a"}, host.window(), ListHost::kListId);
    store.takeCalls();
    fillUpListCtrl(nullptr, host.window(), ListHost::kListId);
    fillUpListCtrl2(nullptr, host.object());
    EXPECT_THAT(store.calls(), IsEmpty());
    EXPECT_THAT(host.column(5), ElementsAre("C:\\a"));
}

TEST_F(ListByIdTest, AnyoneCanBeOne)
{
    DialogScript script;
    script.onDialog("OK", pressOk);
    add(Paths{L"C:\\a"}, script, CORVANE_ANYONE);
    EXPECT_THAT(host.column(0), ElementsAre("Anyone"));
}
