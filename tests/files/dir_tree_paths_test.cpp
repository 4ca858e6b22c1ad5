// The paths of the tree of drives and files, and the tree on drives of the running system.
#include "tests/files/dir_tree_test.h"

#include "files/file_search.h"
#include "tests/support/import_patch.h"
#include "tests/support/recording_store.h"
#include "tests/support/text.h"

#include <shellapi.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

HMODULE self()
{
    return GetModuleHandleW(nullptr);
}

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
