// What "Choose file..." does around its listings of drives and folders.
#include "tests/files/choose_file_test.h"

#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <objbase.h>
#include <utility>

using namespace tree_nodes;
using testing::IsEmpty;

namespace {

/// Counts what the library asks of COM. The runtime may prepare the thread of a window for itself.
class ComCalls {
public:
    ComCalls()
    {
        open = 0;
        EXPECT_EQ(m_enter.count(), 1);
        EXPECT_EQ(m_leave.count(), 1);
    }

    static inline int open = 0; ///< apartments that were entered and not left

private:
    ImportPatch m_enter{ImportPatch::corvane(), "CoInitializeEx", +[](void* reserved, DWORD kind) -> HRESULT {
                            ++open;
                            return CoInitializeEx(reserved, kind);
                        }};
    ImportPatch m_leave{ImportPatch::corvane(), "CoUninitialize", +[]() -> void {
                            --open;
                            CoUninitialize();
                        }};
};

} // namespace

TEST_F(ChooseFileTest, ListsWithoutBoxesOfTheSystemUnderTheWaitCursorAndWithCom)
{
    HCURSOR const wait = LoadCursorW(nullptr, IDC_WAIT);
    HCURSOR const arrow = LoadCursorW(nullptr, IDC_ARROW);
    const ComCalls com;
    const DWORD modeBefore = GetThreadErrorMode();
    ASSERT_EQ(modeBefore & SEM_FAILCRITICALERRORS, 0u);
    disk.setFolder(L"Q:\\", {file(L"q.txt")});
    int calls = 0;
    disk.onCall = [&] {
        ++calls;
        EXPECT_EQ(GetThreadErrorMode(), modeBefore | SEM_FAILCRITICALERRORS) << disk.takeCalls().back();
        EXPECT_EQ(GetCursor(), wait);
        EXPECT_GT(com.open, 0);
    };
    const auto expectAsBefore = [&](HCURSOR cursor) {
        EXPECT_EQ(GetThreadErrorMode(), modeBefore);
        EXPECT_EQ(GetCursor(), cursor);
        EXPECT_EQ(com.open, 0);
    };
    DialogScript script;
    script.onDialog("open a drive", [&](HWND dialog) {
        EXPECT_GT(calls, 0);
        expectAsBefore(GetCursor());
        EXPECT_NE(GetCursor(), wait);
        calls = 0;
        SetCursor(arrow);
        expand(treeOf(dialog), next(treeOf(dialog), TVGN_NEXT, next(treeOf(dialog), TVGN_ROOT)));
        EXPECT_GT(calls, 0);
        expectAsBefore(arrow);
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
}

TEST_F(ChooseFileTest, AFaultInAListingLeavesTheThreadAsItWas)
{
    const ComCalls com;
    const DWORD modeBefore = GetThreadErrorMode();
    currentFolder = L"";
    bool armed = true;
    disk.failIcons = [&](UINT) -> bool {
        if (std::exchange(armed, false)) {
            RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
        }
        return false;
    };
    DialogScript script;
    script.onDialog("look and press OK", [&](HWND dialog) {
        EXPECT_FALSE(armed);
        EXPECT_EQ(GetThreadErrorMode(), modeBefore);
        EXPECT_EQ(com.open, 0);
        EXPECT_NE(GetCursor(), LoadCursorW(nullptr, IDC_WAIT));
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "");
}

TEST_F(ChooseFileTest, HidesFilesForAnyOtherFlag)
{
    for (const unsigned flag : {1u, 0x80000000u}) {
        currentFolder = L"C:\\";
        DialogScript script;
        script.onDialog("look and press OK", [](HWND dialog) {
            HWND tree = treeOf(dialog);
            EXPECT_THAT(children(tree, next(tree, TVGN_ROOT)), IsEmpty());
            clickLater(dialog, IDOK);
        });
        EXPECT_EQ(chosen(script, flag), "C:") << flag;
    }
}

TEST_F(ChooseFileTest, ATreeThatCannotBeDisplayedIsEmpty)
{
    const auto emptyAndOk = [&] {
        DialogScript script;
        script.onDialog("press OK", [](HWND dialog) {
            EXPECT_EQ(next(treeOf(dialog), TVGN_ROOT), nullptr);
            clickLater(dialog, IDOK);
        });
        return chosen(script);
    };
    disk.failDrives = true;
    EXPECT_EQ(emptyAndOk(), "");
    disk.failImages = true;
    EXPECT_EQ(emptyAndOk(), "");
}
