// The tree of drives and files: on drives that the test makes up, and on those of the running system.
#include "files/file_search.h"
#include "tests/files/fake_disk.h"
#include "tests/files/tree_host.h"
#include "tests/support/import_patch.h"
#include "tests/support/recording_store.h"
#include "tests/support/text.h"

#include <shellapi.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

HMODULE self()
{
    return GetModuleHandleW(nullptr);
}

struct DirTreeTest : testing::Test {
    FakeDisk disk{self()};
    TreeHost host;
    CDirTreeCtrl& tree = host.tree();

    void openDrive(const std::wstring& name) { host.click(host.top(name)); }
};

/// A folder of the running system, removed at the end.
class RealFolder {
public:
    RealFolder()
        : m_path(std::filesystem::temp_directory_path() /
                 (L"dir-tree-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count)))
    {
        std::filesystem::create_directories(m_path);
    }
    RealFolder(const RealFolder&) = delete;
    RealFolder& operator=(const RealFolder&) = delete;
    ~RealFolder() { std::filesystem::remove_all(m_path); }

    std::wstring path() const { return m_path.native(); }
    void add(const wchar_t* name) const { std::ofstream(m_path / name).put('x'); }
    void addFolder(const wchar_t* name) const { std::filesystem::create_directory(m_path / name); }

private:
    static inline int count = 0;
    std::filesystem::path m_path;
};

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
        self(), "FindFirstFileW",
        +[](const wchar_t*, WIN32_FIND_DATAW*) { return reinterpret_cast<HANDLE>(answer); });
    const ImportPatch close(
        self(), "FindClose", +[](HANDLE search) -> BOOL {
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
        self(), "SHGetFileInfoW", +[](const wchar_t*, DWORD, void*, UINT, UINT) -> DWORD_PTR { throw 1; });
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

// ---- paths ------------------------------------------------------------------------------------------------

TEST_F(DirTreeTest, BuildsTheFullPath)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"Data"), file(L"z")});
    ASSERT_TRUE(tree.display(nullptr, true));
    openDrive(L"C:");
    EXPECT_EQ(tree.fullPath(host.top(L"C:")), L"C:");
    EXPECT_EQ(tree.fullPath(host.child(host.top(L"C:"), L"Data")), L"C:\\Data");
    EXPECT_EQ(tree.fullPath(nullptr), L"");
}

TEST_F(DirTreeTest, ReadsANodeTextOfAnyLength)
{
    const std::wstring folderPath = L"D:\\" + std::wstring(9000, L'x');
    disk.setFolder(folderPath, {});
    ASSERT_TRUE(tree.display(folderPath.c_str(), true));
    // A tree view of the platform may cut a text, so what it holds is compared.
    const std::wstring held = tree.text(tree.firstChild(TVI_ROOT));
    EXPECT_TRUE(folderPath.starts_with(held));
    EXPECT_GE(held.size(), 259u);
}

TEST_F(DirTreeTest, SelectsADrive)
{
    disk.addDrive(L"C:\\");
    disk.addDrive(L"D:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    disk.setFolder(L"D:\\", {file(L"d.txt"), file(L"e.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    host.takeMessages();
    EXPECT_TRUE(tree.setSelectedPath(L"D:\\"));
    EXPECT_EQ(host.selectedText(), "D:");
    EXPECT_EQ(disk.takeCalls().front(), "find D:\\nul");
    EXPECT_THAT(host.children(host.top(L"D:")), ElementsAre("d.txt", "e.txt"));
    EXPECT_THAT(host.takeMessages(), ElementsAre("redraw 0", "expand 2", "redraw 1"));
    EXPECT_TRUE(tree.setSelectedPath(L"C:"));
    EXPECT_EQ(host.selectedText(), "C:");
}

TEST_F(DirTreeTest, SelectsADriveWhereTheNullDeviceIsNoFile)
{
    disk.nulIsADevice = true;
    disk.addDrive(L"C:\\");
    disk.addDrive(L"D:\\"); // without a medium by now
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_FALSE(tree.setSelectedPath(L"D:\\"));
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\gone"));
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\a.txt"));
    disk.takeCalls();
    EXPECT_TRUE(tree.setSelectedPath(L"C:\\"));
    EXPECT_EQ(host.selectedText(), "C:");
    EXPECT_THAT(disk.takeCalls(), testing::Contains("attributes C:\\"));
    EXPECT_EQ(disk.openSearches(), 0);
}

TEST_F(DirTreeTest, TheAttributesAreAskedForAfterADeviceAlone)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_TRUE(tree.setSelectedPath(L"C:\\"));
    EXPECT_EQ(disk.calls("attributes"), 0);
}

TEST_F(DirTreeTest, ReadsANodeAgainThatWasOpenedBefore)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    ASSERT_TRUE(tree.setSelectedPath(L"C:\\"));
    disk.setFolder(L"C:\\", {file(L"new.txt"), file(L"b.txt")});
    host.takeMessages();
    EXPECT_TRUE(tree.setSelectedPath(L"C:\\"));
    EXPECT_THAT(host.takeMessages(),
                ElementsAre("redraw 0", "expand 2", "expand 8001", "expand 2", "redraw 1"));
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre("new.txt", "b.txt"));
    EXPECT_NE(tree.state(host.top(L"C:"), TVIS_EXPANDED), 0u);

    // The same after the user closed it.
    openDrive(L"C:");
    ASSERT_EQ(tree.state(host.top(L"C:"), TVIS_EXPANDED), 0u);
    disk.setFolder(L"C:\\", {file(L"newer.txt"), file(L"b.txt")});
    EXPECT_TRUE(tree.setSelectedPath(L"C:\\"));
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre("newer.txt", "b.txt"));
}

TEST_F(DirTreeTest, SelectsTheNodeOfTheLastSegment)
{
    // A folder by the name of a file that is listed: no real drive has both.
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"Data"), file(L"z")});
    disk.setFolder(L"C:\\Data", {});
    for (const wchar_t* path : {L"C:\\Data", L"C:\\Data\\"}) {
        ASSERT_TRUE(tree.display(nullptr, true));
        disk.takeCalls();
        host.takeMessages();
        EXPECT_TRUE(tree.setSelectedPath(path));
        EXPECT_EQ(host.selectedText(), "Data");
        EXPECT_EQ(tree.fullPath(tree.selected()), L"C:\\Data");
        EXPECT_EQ(disk.takeCalls().front(), "find C:\\Data\\nul");
        EXPECT_THAT(host.takeMessages(), ElementsAre("redraw 0", "expand 2", "expand 2", "redraw 1"));
    }
}

TEST_F(DirTreeTest, AnEmptySegmentSelectsNothing)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\\\")); // the check takes both backslashes off, the walk does not
    EXPECT_EQ(disk.takeCalls().front(), "find C:\\nul");
    EXPECT_EQ(host.selectedText(), "");
    EXPECT_NE(tree.state(host.top(L"C:"), TVIS_EXPANDED), 0u);
}

TEST_F(DirTreeTest, AFolderUnderADriveSelectsNothing)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {folder(L"Windows"), file(L"a.txt"), file(L"b.txt")});
    disk.setFolder(L"C:\\Windows", {file(L"win.ini")});
    ASSERT_TRUE(tree.display(nullptr, true));
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\Windows"));
    EXPECT_EQ(host.selectedText(), "");
    EXPECT_NE(tree.state(host.top(L"C:"), TVIS_EXPANDED), 0u); // opened on the way
    EXPECT_THAT(host.children(host.top(L"C:")), ElementsAre("a.txt", "b.txt"));
    EXPECT_EQ(host.takeMessages().back(), "redraw 1");
}

TEST_F(DirTreeTest, KeepsTheSelectionWhenAPathSelectsNothing)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    disk.setFolder(L"C:\\Windows", {});
    ASSERT_TRUE(tree.display(nullptr, true));
    ASSERT_TRUE(tree.setSelectedPath(L"C:\\"));
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\Windows"));
    EXPECT_EQ(host.selectedText(), "C:");
}

TEST_F(DirTreeTest, SelectsOnlyFolders)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"a.txt"), file(L"b.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\a.txt"));
    EXPECT_THAT(disk.takeCalls(), ElementsAre("find C:\\a.txt\\nul"));
}

TEST_F(DirTreeTest, ADriveThatIsNotShownSelectsNothing)
{
    disk.addDrive(L"A:\\", 0);
    disk.addDrive(L"C:\\");
    disk.setFolder(L"A:\\", {file(L"a.txt")});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    EXPECT_FALSE(tree.setSelectedPath(L"A:\\"));
    EXPECT_FALSE(tree.setSelectedPath(L""));
    EXPECT_FALSE(tree.setSelectedPath(L"\\\\server\\share"));
    EXPECT_THAT(disk.takeCalls(), IsEmpty());
    EXPECT_EQ(host.selectedText(), "");
}

TEST_F(DirTreeTest, PathsMindTheCase)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", {file(L"Data")});
    disk.setFolder(L"c:\\", {});
    disk.setFolder(L"C:\\data", {}); // as the disk sees it
    disk.setFolder(L"C:\\Data", {});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    EXPECT_FALSE(tree.setSelectedPath(L"c:\\"));
    EXPECT_THAT(disk.takeCalls(), IsEmpty()) << "it is none of the drives";
    EXPECT_TRUE(tree.setSelectedPath(L"C:\\"));
    EXPECT_FALSE(tree.setSelectedPath(L"C:\\data"));
    EXPECT_TRUE(tree.setSelectedPath(L"C:\\Data"));
}

TEST_F(DirTreeTest, OnlyTheBeginningOfAPathIsCheckedAgainstTheTopLevel)
{
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:x", {});
    ASSERT_TRUE(tree.display(nullptr, true));
    disk.takeCalls();
    EXPECT_FALSE(tree.setSelectedPath(L"C:x")); // passes the check, and no node has that name
    EXPECT_THAT(disk.takeCalls(), ElementsAre("find C:x\\nul"));
}

TEST_F(DirTreeTest, HoldsManyFiles)
{
    std::vector<FakeDisk::Entry> files;
    for (int i = 0; i < 5000; ++i) {
        files.push_back(file(std::to_wstring((i * 7919) % 5000 + 5000)));
    }
    disk.addDrive(L"C:\\");
    disk.setFolder(L"C:\\", files);
    ASSERT_TRUE(tree.display(nullptr, true));
    ASSERT_TRUE(tree.setSelectedPath(L"C:\\"));
    const auto names = host.children(host.top(L"C:"));
    ASSERT_EQ(names.size(), 5000u);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end() - 1));
    EXPECT_EQ(names.back(), utf8(files.back().name));
}

// ---- the running system -----------------------------------------------------------------------------------

TEST(DirTreeSystemTest, ListsARealFolder)
{
    const RealFolder real;
    real.add(L"beta.txt");
    real.add(L"Alpha.txt");
    real.add(L"gamma.txt");
    real.addFolder(L"sub");
    TreeHost host;
    ASSERT_TRUE(host.tree().display(real.path().c_str(), true));
    HTREEITEM root = host.tree().firstChild(TVI_ROOT);
    EXPECT_THAT(host.children(root), testing::UnorderedElementsAre("Alpha.txt", "beta.txt", "gamma.txt"));
    EXPECT_NE(host.tree().send(TVM_GETIMAGELIST, TVSIL_NORMAL), 0);

    real.add(L"later.txt");
    host.click(root); // opens; contents are listed afresh
    EXPECT_THAT(host.children(root),
                testing::UnorderedElementsAre("Alpha.txt", "beta.txt", "gamma.txt", "later.txt"));
}

TEST(DirTreeSystemTest, SelectsARealDrive)
{
    // Not every file system of the platforms that this runs on tells of its streams.
    const ImportPatch volume(
        self(), "GetVolumeInformationW",
        +[](const wchar_t* root, wchar_t*, DWORD, DWORD*, DWORD*, DWORD* flags, wchar_t*, DWORD) -> BOOL {
            *flags = FILE_NAMED_STREAMS;
            return root[0] == L'C';
        });
    ASSERT_EQ(volume.count(), 1);
    TreeHost host;
    ASSERT_TRUE(host.tree().display(nullptr, true));
    ASSERT_THAT(host.children(TVI_ROOT), ElementsAre("C:"));
    EXPECT_TRUE(host.tree().setSelectedPath(L"C:\\"));
    EXPECT_EQ(host.selectedText(), "C:");
    EXPECT_FALSE(host.tree().setSelectedPath(L"C:\\Windows"));
    EXPECT_FALSE(host.tree().setSelectedPath(L"C:\\no such folder"));
    EXPECT_FALSE(host.tree().setSelectedPath(L"C:\\windows\\win.ini"));
}
