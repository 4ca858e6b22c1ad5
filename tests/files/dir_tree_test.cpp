// The tree of drives and files: what it shows, and what goes wrong.
#include "tests/files/dir_tree_test.h"

#include "files/file_search.h"
#include "tests/support/import_patch.h"
#include "tests/support/recording_store.h"
#include "tests/support/text.h"

#include <shellapi.h>

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

HMODULE program()
{
    return GetModuleHandleW(nullptr);
}

} // namespace

// ---- the drives -------------------------------------------------------------------------------------------

TEST_F(DirTreeTest, ShowsDrivesThatKeepNamedStreams)
{
    disk.addDrive(L"A:\\", 0x2); // no named streams
    disk.addDrive(L"C:\\", 0x40000 | 0x2);
    disk.addEmptyDrive(L"D:\\");
    disk.addDrive(L"E:\\", 0x40000);
    EXPECT_TRUE(tree.display(nullptr, true));
    EXPECT_THAT(host.children(TVI_ROOT), ElementsAre("C:", "E:"));
    EXPECT_EQ(tree.rootPath(), L"");
    EXPECT_EQ(tree.errorText(), L"");
    EXPECT_EQ(disk.openSearches(), 0);
}

TEST_F(DirTreeTest, TakesAnEmptyRootPathForNone)
{
    disk.addDrive(L"C:\\");
    EXPECT_TRUE(tree.display(L"", true));
    EXPECT_THAT(host.children(TVI_ROOT), ElementsAre("C:"));
}

TEST_F(DirTreeTest, AsksThePlatformInOrder)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"hidden.sys", FILE_ATTRIBUTE_HIDDEN), file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_THAT(disk.takeCalls(),
                ElementsAre("icon 4001 C:\\", "drives 258", "volume C:\\", "icon 101 C:\\", "icon 103 C:\\",
                            "find C:\\*.*", "next", "next", "next")); // ends at the first entry that counts
    EXPECT_EQ(disk.openIcons(), 0);
}

TEST_F(DirTreeTest, LooksAFileUpWithABackslashBehindIt)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"tool.exe"), file(L"z")});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    openDrive(L"C:");
    EXPECT_THAT(disk.takeCalls(), Contains("icon 101 C:\\tool.exe\\"));
}

TEST_F(DirTreeTest, ShowsBothImagesOfANode)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"tool.exe"), file(L"z")});
    ASSERT_TRUE(tree.display(nullptr, true));
    openDrive(L"C:");
    EXPECT_EQ(host.images(host.top(L"C:")), "10/11");
    EXPECT_EQ(host.images(host.child(host.top(L"C:"), L"tool.exe")), "20/21");
    EXPECT_NE(tree.send(TVM_GETIMAGELIST, TVSIL_NORMAL), 0);
    EXPECT_EQ(disk.openIcons(), 0);
}

TEST_F(DirTreeTest, ClearsTheEditLabelsStyle)
{
    disk.addDrive(L"C:\\");
    TreeHost editable(TVS_EDITLABELS);
    const DWORD before = editable.tree().style();
    ASSERT_NE(before & TVS_EDITLABELS, 0u);
    EXPECT_TRUE(editable.tree().display(nullptr, true));
    EXPECT_EQ(editable.tree().style(), before & ~static_cast<DWORD>(TVS_EDITLABELS));
}

TEST_F(DirTreeTest, FillsFromScratch)
{
    disk.addDrive(L"C:\\");
    ASSERT_TRUE(tree.display(nullptr, true));
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_THAT(host.children(TVI_ROOT), ElementsAre("C:"));
}

// ---- what goes wrong --------------------------------------------------------------------------------------

TEST_F(DirTreeTest, FailsWithoutTheSystemImageList)
{
    disk.addDrive(L"C:\\");
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.failImages = true;
    EXPECT_FALSE(tree.display(nullptr, true));
    EXPECT_EQ(tree.errorText(), L"Cannot retrieve the Handle of SystemImageList!");
    EXPECT_THAT(host.children(TVI_ROOT), IsEmpty()); // removed before
}

TEST_F(DirTreeTest, FailsWithoutDriveStrings)
{
    disk.failDrives = true;
    EXPECT_FALSE(tree.display(nullptr, true));
    EXPECT_EQ(tree.errorText(), L"Error Getting Logical DriveStrings!");
}

TEST_F(DirTreeTest, GoesOnWithoutIcons)
{
    disk.addDrive(L"C:\\");
    disk.failIcons = [](UINT) {
        return true;
    };
    EXPECT_TRUE(tree.display(nullptr, true));
    EXPECT_EQ(tree.errorText(), L"Error Gettting SystemFileInfo!");
    EXPECT_EQ(host.images(host.top(L"C:")), "0/0");
}

TEST_F(DirTreeTest, EachIconStandsForItself)
{
    disk.addDrive(L"C:\\");
    disk.failIcons = [](UINT flags) {
        return (flags & SHGFI_OPENICON) == 0;
    };
    EXPECT_TRUE(tree.display(nullptr, true));
    EXPECT_EQ(host.images(host.top(L"C:")), "0/11");
    disk.failIcons = [](UINT flags) {
        return (flags & SHGFI_OPENICON) != 0;
    };
    EXPECT_TRUE(tree.display(nullptr, true));
    EXPECT_EQ(host.images(host.top(L"C:")), "10/0");
}

TEST_F(DirTreeTest, ASmallHandleIsNoSearch)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    for (const UINT_PTR answer : {UINT_PTR{2}, UINT_PTR{32}}) {
        disk.searchAnswer = reinterpret_cast<HANDLE>(answer);
        ASSERT_TRUE(tree.display(nullptr, true));
        EXPECT_THAT(host.children(host.top(L"C:")), IsEmpty()) << answer;
        EXPECT_FALSE(tree.setSelectedPath(L"C:\\")) << answer;
    }
}

TEST(FileSearchTest, AHandleAbove32IsASearchAndIsClosed)
{
    static UINT_PTR answer = 0;
    static std::vector<UINT_PTR> closed;
    const ImportPatch first(
        program(), "FindFirstFileW",
        +[](const wchar_t*, WIN32_FIND_DATAW*) { return reinterpret_cast<HANDLE>(answer); });
    const ImportPatch close(
        program(), "FindClose", +[](HANDLE search) -> BOOL {
            closed.push_back(reinterpret_cast<UINT_PTR>(search));
            return TRUE;
        });
    ASSERT_EQ(first.count(), 1);
    ASSERT_EQ(close.count(), 1);
    const auto started = [](UINT_PTR handle) {
        answer = handle;
        closed.clear();
        const bool result = FileSearch(L"C:\\*.*").started();
        EXPECT_EQ(closed, result ? std::vector{handle} : std::vector<UINT_PTR>{});
        return result;
    };
    EXPECT_FALSE(started(0));
    EXPECT_FALSE(started(32));
    EXPECT_TRUE(started(33));
    EXPECT_TRUE(started(UINTPTR_MAX - 1));
    EXPECT_FALSE(started(UINTPTR_MAX)); // how a search fails
}

TEST_F(DirTreeTest, AFolderThatCannotBeSearchedHasNoChildren)
{
    disk.addDrive(L"C:\\");
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_THAT(host.children(host.top(L"C:")), IsEmpty());
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\"));
    EXPECT_TRUE(tree.display(L"C:\\gone", true));
    EXPECT_THAT(host.children(TVI_ROOT), ElementsAre("C:\\gone"));
}

// ---- the children test ------------------------------------------------------------------------------------

TEST_F(DirTreeTest, TellsWhichDrivesHaveContents)
{
    const auto placeholder = [&](std::vector<FakeDisk::Entry> entries, bool showFiles) {
        disk.setFolder(L"C:\\", std::move(entries));
        EXPECT_TRUE(tree.display(nullptr, showFiles));
        const auto children = host.children(host.top(L"C:"));
        EXPECT_TRUE(children.empty() || children == std::vector<std::string>{""});
        return !children.empty();
    };
    disk.addDrive(L"C:\\");
    EXPECT_FALSE(placeholder({}, true));
    EXPECT_TRUE(placeholder({file(L"a")}, true));
    EXPECT_FALSE(placeholder({file(L"a")}, false));
    EXPECT_FALSE(placeholder({file(L"a", FILE_ATTRIBUTE_HIDDEN)}, true));
    EXPECT_TRUE(placeholder({folder(L"Data")}, true));
    EXPECT_TRUE(placeholder({folder(L"Data")}, false));
    EXPECT_TRUE(placeholder({folder(L"Data", FILE_ATTRIBUTE_HIDDEN)}, false));
    EXPECT_FALSE(placeholder({folder(L".git")}, true));
    EXPECT_TRUE(placeholder({folder(L"Link", FILE_ATTRIBUTE_REPARSE_POINT)}, true));
    // Although it is not listed.
    EXPECT_TRUE(placeholder({file(L"linked", FILE_ATTRIBUTE_REPARSE_POINT)}, true));
    EXPECT_TRUE(placeholder({file(L".profile")}, true));
    EXPECT_TRUE(placeholder({folder(L".git"), file(L"a", FILE_ATTRIBUTE_HIDDEN), folder(L"Data")}, true));
    EXPECT_EQ(disk.openSearches(), 0);
}

// ---- opening and closing ----------------------------------------------------------------------------------

TEST_F(DirTreeTest, ListsPlainFilesOnly)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {folder(L"Data"), file(L"b.txt"), file(L"A.txt"),
                             file(L"linked", FILE_ATTRIBUTE_REPARSE_POINT),
                             file(L"c.sys", FILE_ATTRIBUTE_HIDDEN), file(L"a last one")});
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre(""));
    openDrive(L"C:");
    // By name, but for the last one that the drive told.
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre("A.txt", "b.txt", "c.sys", "a last one"));
    for (const wchar_t* name : {L"A.txt", L"c.sys"}) {
        EXPECT_THAT(host.children(host.child(host.top(L"C:"), name)), IsEmpty());
    }
}

TEST_F(DirTreeTest, ADriveOfFoldersOpensAndListsNothing)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {folder(L"Data"), folder(L"Windows")});
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre(""));
    openDrive(L"C:");
    EXPECT_THAT(host.children(host.top(L"C:")), IsEmpty());
}

TEST_F(DirTreeTest, WithoutFilesNothingIsListed)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {folder(L"Data"), file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, false));
    openDrive(L"C:");
    EXPECT_THAT(host.children(host.top(L"C:")), IsEmpty());
}

TEST_F(DirTreeTest, ListsTwiceAndShowsOnce)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    host.takeMessages();
    openDrive(L"C:");
    EXPECT_EQ(disk.calls("find C:\\*.*"), 2);
    EXPECT_EQ(disk.calls("icon 101 C:\\a.txt\\"), 2);
    EXPECT_EQ(disk.calls("icon 103 C:\\a.txt\\"), 2);
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre("a.txt", "b.txt"));
    EXPECT_THAT(host.takeMessages(), ElementsAre("redraw 0", "redraw 1"));
}

TEST_F(DirTreeTest, DrawsOnceAlsoAfterAPathWasSelected)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    for (const wchar_t* path : {L"C:\\", L"C:\\gone"}) {
        tree.setSelectedPath(path);
        host.takeMessages();
        openDrive(L"C:");
        EXPECT_THAT(host.takeMessages(), ElementsAre("redraw 0", "redraw 1")) << utf8(path);
    }
}

TEST_F(DirTreeTest, ClosingThrowsTheContentsAway)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    openDrive(L"C:");
    openDrive(L"C:"); // closes
    EXPECT_EQ(tree.state(host.top(L"C:"), TVIS_EXPANDED), 0u);
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre(""));
    disk.setFolder(L"C:\\", {file(L"new.txt"), file(L"b.txt")});
    openDrive(L"C:");
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre("new.txt", "b.txt"));
}

TEST_F(DirTreeTest, AFaultWhileListingLeavesTheTreeDrawing)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    host.takeMessages();
    const ImportPatch icons(
        program(), "SHGetFileInfoW", +[](const wchar_t*, DWORD, void*, UINT, UINT) -> DWORD_PTR { throw 1; });
    NMTREEVIEWW notification{};
    notification.itemNew.hItem = host.top(L"C:");
    notification.itemNew.state = TVIS_EXPANDED;
    EXPECT_THROW(tree.onItemExpanded(notification), int);
    EXPECT_THAT(host.takeMessages(), ElementsAre("redraw 0", "redraw 1"));
}

// ---- a root of its own ------------------------------------------------------------------------------------

TEST_F(DirTreeTest, ShowsOneFolder)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"D:\\Shared\\Data", {file(L"b"), file(L"a"), file(L"z"), folder(L"sub")});
    host.takeMessages();
    EXPECT_TRUE(tree.display(L"D:\\Shared\\Data", true));
    EXPECT_THAT(host.takeMessages(), ElementsAre("delete all", "redraw 0", "redraw 1"));
    EXPECT_EQ(tree.rootPath(), L"D:\\Shared\\Data\\");
    ASSERT_THAT(host.children(TVI_ROOT), ElementsAre("D:\\Shared\\Data"));
    HTREEITEM root = tree.firstChild(TVI_ROOT);
    EXPECT_THAT(host.children(root), ElementsAre("a", "b", "z"));
    EXPECT_EQ(tree.fullPath(host.child(root, L"a")), L"D:\\Shared\\Data\\a");
    EXPECT_EQ(disk.calls("drives"), 0);
    // Segments are looked up one by one, and the only node of the top level is named by its whole path.
    EXPECT_FALSE(tree.setSelectedPath(L"D:\\Shared\\Data"));

    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_EQ(tree.rootPath(), L"");
}

TEST_F(DirTreeTest, TakesOneBackslashOffAFolder)
{
    disk.setFolder(L"D:\\Data", {file(L"a"), file(L"b")});
    EXPECT_TRUE(tree.display(L"D:\\Data\\", true));
    EXPECT_EQ(tree.rootPath(), L"D:\\Data\\");
    ASSERT_THAT(host.children(TVI_ROOT), ElementsAre("D:\\Data"));
    EXPECT_THAT(host.children(tree.firstChild(TVI_ROOT)), ElementsAre("a", "b"));
    EXPECT_EQ(disk.calls("find D:\\Data\\*.*"), 1);
    EXPECT_EQ(disk.calls("icon 101 D:\\Data\\a\\"), 1);
}
