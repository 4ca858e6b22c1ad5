// The list functions that take a dialog and a control number.
#include "tests/quota/rule_list_test.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct ListByIdTest : RuleListTest {
    void SetUp() override { initializeListCtrl(host.window(), kList, nullptr); }

    std::vector<std::string> callsAboutFolders() const { return store.callsWith("Path"); }

    bool add(const PathList* paths, DialogScript& script, void* sid = nullptr)
    {
        return script.run([&] { return addToListCtrl(host.window(), kList, sid, paths); }) != 0;
    }

    static constexpr int kList = ListHost::kListId;
};

} // namespace

TEST_F(ListByIdTest, Prepare)
{
    EXPECT_EQ(Header_GetItemCount(host.header()), 6);
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    initializeListCtrl(host.window(), kList, Paths{L"C:\\a"});
    EXPECT_EQ(countItems(host.window(), kList), 1);
}

TEST_F(ListByIdTest, FillEditDropSortAndHandBack)
{
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    store.put(L"C:\\b", nullptr, 4096, 1024, 0);
    fillUpListCtrl(Paths{L"C:\\a", L"C:\\b"}, host.window(), kList);
    EXPECT_EQ(countItems(host.window(), kList), 2);
    EXPECT_EQ(getDataModified(host.window(), kList), host.record(0));

    sortListCtrl(host.window(), kList, 4);
    sortListCtrl(host.window(), kList, 1);
    EXPECT_THAT(host.column(5), ElementsAre("C:\\a", "C:\\b"));

    host.selectOnly({1});
    EXPECT_NE(Visit().ok(limits(L"9K", L"8K")).run([this] { return editFromListCtrl(host.window(), kList); }),
              0);
    EXPECT_EQ(host.row(1), "Anyone|9216 |8192 |0 |00%|C:\\b");

    EXPECT_NE(dropFromListCtrl(host.window(), kList), 0);
    EXPECT_THAT(host.column(5), ElementsAre("C:\\a"));
    EXPECT_EQ(dropFromListCtrl(host.window(), kList), 0);
    EXPECT_TRUE(IsWindow(host.list())) << "the control outlives the call";
}

TEST_F(ListByIdTest, AddingMakesTheFoldersKnown)
{
    EXPECT_TRUE(add(Paths{L"C:\\a", L"C:\\b"}, Visit().ok().ok()));
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
    add(Paths{L"C:\\a"}, Visit().ok());
    EXPECT_THAT(callsAboutFolders(),
                ElementsAre("getKnownPaths", "appendToPaths [C:\\known] C:\\a",
                            "storeKnownPaths [C:\\known, C:\\a]", "freePathList [C:\\known, C:\\a]"));
}

TEST_F(ListByIdTest, CancellingOneFolderMakesNoneKnown)
{
    EXPECT_FALSE(add(Paths{L"C:\\a", L"C:\\b", L"C:\\c"}, Visit().ok().cancel().ok()));
    EXPECT_THAT(callsAboutFolders(), IsEmpty());
}

TEST_F(ListByIdTest, AFolderThatIsPassedOverIsMadeKnownAllTheSame)
{
    add(Paths{L"C:\\a"}, Visit().ok());
    store.takeCalls();
    EXPECT_TRUE(add(Paths{L"C:\\a"}, Visit().conflict()));
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
        EXPECT_NE(addToListCtrl(host.window(), kList, nullptr, none), 0);
        EXPECT_THAT(callsAboutFolders(),
                    ElementsAre("getKnownPaths", "storeKnownPaths [C:\\known]", "freePathList [C:\\known]"));
        store.takeCalls();
        store.answer.getKnownPaths = [] {
            return nullptr;
        };
        EXPECT_NE(addToListCtrl(host.window(), kList, nullptr, none), 0);
        EXPECT_THAT(callsAboutFolders(),
                    ElementsAre("getKnownPaths", "storeKnownPaths null", "freePathList null"));
        store.takeCalls();
    }
}

TEST_F(ListByIdTest, NoFolderFillsNothing)
{
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    fillUpListCtrl(Paths{L"C:\\a"}, host.window(), kList);
    store.takeCalls();
    fillUpListCtrl(nullptr, host.window(), kList);
    fillUpListCtrl2(nullptr, host.object());
    EXPECT_THAT(store.calls(), IsEmpty());
    EXPECT_THAT(host.column(5), ElementsAre("C:\\a"));
}

TEST_F(ListByIdTest, AnyoneCanBeOne)
{
    add(Paths{L"C:\\a"}, Visit().ok(), CORVANE_ANYONE);
    EXPECT_THAT(host.column(0), ElementsAre("Anyone"));
}
