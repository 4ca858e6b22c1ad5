// The "Choose file..." dialog, through its export.
#include "tests/files/choose_file_test.h"

#include "frame/narrow_handle.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/nothing_left.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <utility>

using namespace tree_nodes;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

INT_PTR ended = 0;
BOOL(WINAPI* reallyEnd)(HWND, INT_PTR) = nullptr;

BOOL WINAPI end(HWND dialog, INT_PTR result)
{
    ended = result;
    return reallyEnd(dialog, result);
}

/// Memory of which every address has its 32nd bit set, for the large blocks of one module.
class HighBlocks {
public:
    HighBlocks()
    {
        for (UINT_PTR place = 0x80000000; start == nullptr && place < 0xF0000000; place += 0x10000) {
            start = static_cast<char*>(VirtualAlloc(reinterpret_cast<void*>(place), kSize,
                                                    MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        }
        used = 0;
        EXPECT_NE(start, nullptr);
        EXPECT_GE(m_allocations.count(), 1);
        EXPECT_GE(m_releases.count(), 1);
    }
    ~HighBlocks()
    {
        VirtualFree(start, 0, MEM_RELEASE);
        start = nullptr;
    }
    HighBlocks(const HighBlocks&) = delete;
    HighBlocks& operator=(const HighBlocks&) = delete;

private:
    static constexpr size_t kSize = 1u << 20;
    static inline char* start = nullptr;
    static inline size_t used = 0;

    static void* allocate(size_t size)
    {
        if (size < 300 || used + size > kSize) {
            return std::malloc(size);
        }
        char* block = start + used;
        used += (size + 15) / 16 * 16;
        return block;
    }
    static void release(void* block)
    {
        if (block < start || block >= start + kSize) {
            std::free(block);
        }
    }

    ImportPatch m_allocations{ImportPatch::corvane(), "malloc", &allocate};
    ImportPatch m_releases{ImportPatch::corvane(), "free", &release};
};

} // namespace

TEST_F(ChooseFileTest, ChoosesADrive)
{
    DialogScript script;
    script.onDialog("select the second drive and press OK", [](HWND dialog) {
        EXPECT_EQ(windowText(dialog), "Choose file...");
        HWND tree = treeOf(dialog);
        HTREEITEM first = next(tree, TVGN_ROOT);
        EXPECT_EQ(textOf(tree, first), "C:");
        HTREEITEM second = next(tree, TVGN_NEXT, first);
        EXPECT_EQ(textOf(tree, second), "Q:");
        EXPECT_EQ(next(tree, TVGN_NEXT, second), nullptr);
        select(tree, second);
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "Q:");
    EXPECT_THAT(store.calls(), ElementsAre("ODS onOK: Q:\n"));
}

TEST_F(ChooseFileTest, ChoosesAFile)
{
    DialogScript script;
    script.onDialog("open a drive, select a file and press OK", [](HWND dialog) {
        HWND tree = treeOf(dialog);
        HTREEITEM drive = next(tree, TVGN_ROOT);
        EXPECT_THAT(children(tree, drive), ElementsAre("A.txt", "b.txt", "z.txt")); // opened along the way
        select(tree, next(tree, TVGN_CHILD, drive));
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "C:\\A.txt");
    EXPECT_THAT(store.lines(), ElementsAre("onOK: C:\\A.txt\n"));
    EXPECT_EQ(disk.openSearches(), 0);
    EXPECT_EQ(disk.openIcons(), 0);
}

TEST_F(ChooseFileTest, OpensADriveWhenItsButtonIsClicked)
{
    currentFolder = L"";
    DialogScript script;
    script.onDialog("open, then cancel", [](HWND dialog) {
        HWND tree = treeOf(dialog);
        HTREEITEM drive = next(tree, TVGN_ROOT);
        EXPECT_THAT(children(tree, drive), ElementsAre(""));
        expand(tree, drive);
        EXPECT_THAT(children(tree, drive), ElementsAre("A.txt", "b.txt", "z.txt"));
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ChooseFileTest, NothingSelectedIsAnEmptyPath)
{
    DialogScript script;
    script.onDialog("press OK", [](HWND dialog) {
        EXPECT_EQ(next(treeOf(dialog), TVGN_CARET), nullptr); // the folder of the process is not shown
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "");
    EXPECT_THAT(store.calls(), ElementsAre("ODS onOK: \n"));
}

TEST_F(ChooseFileTest, StartsAtTheDriveOfTheProcessWhenThatIsItsFolder)
{
    currentFolder = L"C:\\";
    DialogScript script;
    script.onDialog("press OK", [](HWND dialog) { clickLater(dialog, IDOK); });
    EXPECT_EQ(chosen(script), "C:");
}

TEST_F(ChooseFileTest, StartsAnywhereWithoutAFolderOfTheProcess)
{
    currentFolder = nullptr;
    DialogScript script;
    script.onDialog("press OK", [](HWND dialog) { clickLater(dialog, IDOK); });
    EXPECT_EQ(chosen(script), "");
}

TEST_F(ChooseFileTest, CancelAndTheCloseBoxGiveNull)
{
    struct Way {
        UINT message;
        WPARAM wParam;
    };
    for (const Way way : {Way{WM_COMMAND, IDCANCEL}, Way{WM_CLOSE, 0}, Way{WM_SYSCOMMAND, SC_CLOSE}}) {
        DialogScript script;
        script.onDialog("close", [way](HWND dialog) {
            select(treeOf(dialog), next(treeOf(dialog), TVGN_ROOT));
            PostMessageW(dialog, way.message, way.wParam, 0);
        });
        EXPECT_EQ(chosen(script), std::nullopt) << way.message;
    }
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ChooseFileTest, EndsWithTheSignExtendedLowHalf)
{
    ImportPatch endPatch(ImportPatch::corvane(), "EndDialog", &end);
    ASSERT_EQ(endPatch.count(), 1);
    reallyEnd = endPatch.original<BOOL WINAPI(HWND, INT_PTR)>();
    disk.setFolder(L"Q:\\", {file(std::wstring(250, L'q')), file(L"z")});
    for (const bool longPath : {false, true}) {
        DialogScript script;
        script.onDialog("press OK", [=](HWND dialog) {
            HWND tree = treeOf(dialog);
            HTREEITEM node = next(tree, TVGN_NEXT, next(tree, TVGN_ROOT));
            if (longPath) {
                expand(tree, node);
                node = next(tree, TVGN_CHILD, node);
            }
            select(tree, node);
            clickLater(dialog, IDOK);
        });
        EXPECT_EQ(chosen(script), longPath ? "Q:\\" + std::string(250, 'q') : "Q:");
        EXPECT_NE(ended, 0);
        EXPECT_EQ(ended, static_cast<INT_PTR>(static_cast<int>(ended)));
    }
}

TEST_F(ChooseFileTest, SurvivesAPathWhoseAddressLooksNegative)
{
    ImportPatch endPatch(ImportPatch::corvane(), "EndDialog", &end);
    reallyEnd = endPatch.original<BOOL WINAPI(HWND, INT_PTR)>();
    disk.setFolder(L"Q:\\", {file(std::wstring(250, L'q')), file(L"z")});
    const HighBlocks high;
    DialogScript script;
    script.onDialog("choose a file", [](HWND dialog) {
        HWND tree = treeOf(dialog);
        HTREEITEM node = next(tree, TVGN_NEXT, next(tree, TVGN_ROOT));
        expand(tree, node);
        select(tree, next(tree, TVGN_CHILD, node));
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "Q:\\" + std::string(250, 'q'));
    EXPECT_LT(ended, -1);
    EXPECT_EQ(ended, static_cast<INT_PTR>(static_cast<int>(ended)));
}

TEST_F(ChooseFileTest, ADialogThatCannotOpenGivesNull)
{
    const HiddenDialog all;
    EXPECT_EQ(chooseFileImpl(nullptr, 0), nullptr);
}

TEST_F(ChooseFileTest, StaysOpenAfterAFault)
{
    store.raise("ODS", Fault::kAccessViolation);
    DialogScript script;
    script.onDialog("press OK", [](HWND dialog) { clickLater(dialog, IDOK); })
        .step("wait for the fault", [&](HWND) { return store.calls().size() == 1; })
        .onDialog("press OK again", [](HWND dialog) { clickLater(dialog, IDOK); });
    EXPECT_EQ(chosen(script), "");
    // This dialog has no line of its own.
    EXPECT_THAT(store.lines(), ElementsAre("onOK: \n", "onOK: \n"));
}

TEST_F(ChooseFileTest, OtherCommandsDoNothing)
{
    DialogScript script;
    script.onDialog("send them", [](HWND dialog) {
        for (const int id : {0, 3, IDC_CHOOSE_FILE_TREE, 9999}) {
            SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0);
        }
        NMHDR header{treeOf(dialog), IDC_CHOOSE_FILE_TREE, NM_CLICK};
        SendMessageW(dialog, WM_NOTIFY, IDC_CHOOSE_FILE_TREE, reinterpret_cast<LPARAM>(&header));
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
}

TEST_F(ChooseFileTest, TakesCommandsByIdWhateverTheNotification)
{
    DialogScript script;
    script.onDialog("press OK",
                    [](HWND dialog) { PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, 7), 0); });
    EXPECT_EQ(chosen(script), "");
}

TEST_F(ChooseFileTest, LeavesNothingBehind)
{
    expectNothingLeft([&] {
        DialogScript script;
        script.onDialog("press OK", [](HWND dialog) {
            HWND tree = treeOf(dialog);
            expand(tree, next(tree, TVGN_NEXT, next(tree, TVGN_ROOT)));
            select(tree, next(tree, TVGN_ROOT));
            clickLater(dialog, IDOK);
        });
        EXPECT_EQ(chosen(script), "C:");
        disk.takeCalls();
        store.takeCalls();
    });
}
