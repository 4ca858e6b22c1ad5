// The chooser of a running process when something goes wrong.
#include "tests/processes/process_chooser_test.h"

#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"

#include <commctrl.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A list view that raises at one message.
UINT raiseAt = 0;
int* volatile nowhere = nullptr;

LRESULT WINAPI sendRaising(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == raiseAt) {
        raiseAt = 0;
        *nowhere = 1;
    }
    return SendMessageW(window, message, wParam, lParam);
}

} // namespace

TEST_F(ProcessChooserTest, AFaultInARowStopsTheListing)
{
    const ImportPatch list(ImportPatch::corvane(), "SendMessageW", &sendRaising);
    ASSERT_EQ(list.count(), 1);
    raiseAt = LVM_SETITEMW; // the item data of the first row
    DialogScript script;
    script.onDialog("look and cancel", [](HWND dialog) {
        EXPECT_THAT(rowsOf(dialog), ElementsAre("services.exe 0")); // what was done before stays
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
    EXPECT_THAT(store.calls(), ElementsAre("ODS UI CRASH: lprocDlg, myCallBack, 49\n"));
    EXPECT_EQ(nextProcess, 1u);
}

TEST_F(ProcessChooserTest, AFaultInAHandlerLeavesTheDialogOpen)
{
    const ImportPatch list(ImportPatch::corvane(), "SendMessageW", &sendRaising);
    DialogScript script;
    script
        .onDialog("press OK",
                  [](HWND dialog) {
                      listOf(dialog).select(2);
                      raiseAt = LVM_GETITEMTEXTW;
                      PostMessageW(dialog, WM_COMMAND, IDOK, 0);
                  })
        .step("wait for the fault", [&](HWND) { return !store.calls().empty(); })
        .onDialog("press OK again", [](HWND dialog) { clickLater(dialog, IDOK); });
    EXPECT_EQ(chosen(script), "notepad.exe");
    EXPECT_THAT(store.calls(), ElementsAre("ODS UI CRASH: lprocDlg, MyDlgProc, 110\n"));
}

TEST_F(ProcessChooserTest, AFaultWhileOpeningLeavesTheDialogOpen)
{
    const ImportPatch list(ImportPatch::corvane(), "SendMessageW", &sendRaising);
    raiseAt = LVM_INSERTCOLUMNW;
    DialogScript script;
    script.onDialog("cancel", [](HWND dialog) { clickLater(dialog, IDCANCEL); });
    EXPECT_EQ(chosen(script), std::nullopt);
    EXPECT_THAT(store.calls(), ElementsAre("ODS UI CRASH: lprocDlg, MyDlgProc, 110\n"));
}

TEST_F(ProcessChooserTest, TellsThatItCouldNotOpen)
{
    const HiddenDialog all;
    EXPECT_EQ(reinterpret_cast<INT_PTR>(chooseProcess(nullptr)), -1);
}

TEST_F(ProcessChooserTest, StaysEmptyWithoutASnapshot)
{
    functions.remove("Process32NextW");
    DialogScript script;
    script.onDialog("look and press OK", [](HWND dialog) {
        EXPECT_THAT(rowsOf(dialog), IsEmpty());
        EXPECT_FALSE(isEnabled(dialog, IDOK));
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
    EXPECT_THAT(store.calls(), IsEmpty());
}
