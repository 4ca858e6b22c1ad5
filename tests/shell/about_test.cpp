// The About box, through its export.
#include "corvane.h"
#include "res/resource.h"
#include "tests/support/dialog_script.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/nothing_left.h"
#include "tests/support/owner_window.h"
#include "tests/support/recording_store.h"
#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

void show(DialogScript& script, HWND owner = nullptr)
{
    script.run([=] {
        showAboutDialog(owner);
        return 0;
    });
}

/// The version in the library's version resource.
std::string version()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(ImportPatch::corvane(), path, MAX_PATH);
    DWORD unused = 0;
    std::vector<unsigned char> data(GetFileVersionInfoSizeW(path, &unused));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT size = 0;
    if (!GetFileVersionInfoW(path, 0, static_cast<DWORD>(data.size()), data.data()) ||
        !VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &size))
    {
        return "no version resource";
    }
    return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
           std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
           std::to_string(HIWORD(info->dwFileVersionLS)) + "." +
           std::to_string(LOWORD(info->dwFileVersionLS));
}

std::vector<std::string> endings;
int failEndings = 0;
BOOL(WINAPI* reallyEnd)(HWND, INT_PTR) = nullptr;
int* volatile nowhere = nullptr;

BOOL WINAPI end(HWND dialog, INT_PTR result)
{
    if (failEndings > 0) {
        --failEndings;
        *nowhere = 1;
    }
    endings.push_back("end " + std::to_string(result));
    return reallyEnd(dialog, result);
}

int failBitmaps = 0;
std::vector<int> bitmaps;

HBITMAP WINAPI loadBitmap(HINSTANCE module, const wchar_t* name)
{
    EXPECT_EQ(module, ImportPatch::corvane());
    bitmaps.push_back(static_cast<int>(reinterpret_cast<UINT_PTR>(name)));
    if (failBitmaps > 0) {
        --failBitmaps;
        *nowhere = 1;
    }
    return LoadBitmapW(module, name);
}

struct AboutTest : testing::Test {
    AboutTest()
    {
        endings.clear();
        bitmaps.clear();
        failEndings = 0;
        failBitmaps = 0;
        EXPECT_EQ(endPatch.count(), 1);
        EXPECT_EQ(bitmapPatch.count(), 1);
        reallyEnd = endPatch.original<BOOL WINAPI(HWND, INT_PTR)>();
    }
    RecordingStore store;
    ImportPatch endPatch{ImportPatch::corvane(), "EndDialog", &end};
    ImportPatch bitmapPatch{ImportPatch::corvane(), "LoadBitmapW", &loadBitmap};
};

} // namespace

TEST_F(AboutTest, ShowsBothPictures)
{
    DialogScript script;
    script.onDialog("look and press OK", [](HWND dialog) {
        EXPECT_EQ(windowText(dialog), "About Vantrel");
        for (const int id : {IDC_ABOUT_LOGO, IDC_ABOUT_PICTURE}) {
            HWND control = GetDlgItem(dialog, id);
            EXPECT_TRUE(IsWindowVisible(control));
            const LRESULT image = SendMessageW(control, STM_GETIMAGE, IMAGE_BITMAP, 0);
            BITMAP bitmap{};
            ASSERT_NE(GetObjectW(reinterpret_cast<HBITMAP>(image), sizeof bitmap, &bitmap), 0) << id;
            // The picture has the size of its control, but for a pixel's rounding of dialog units.
            RECT room{};
            GetClientRect(control, &room);
            EXPECT_NEAR(bitmap.bmWidth, room.right, 1) << id;
            EXPECT_NEAR(bitmap.bmHeight, room.bottom, 1) << id;
        }
        clickLater(dialog, IDOK);
    });
    show(script);
    EXPECT_THAT(bitmaps, ElementsAre(IDB_ABOUT_LOGO, IDB_ABOUT_PICTURE));
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(AboutTest, TellsTheVersionOfTheLibrary)
{
    DialogScript script;
    script.onDialog("read and press OK", [](HWND dialog) {
        std::string texts;
        for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT))
        {
            texts += windowText(child) + "\n";
        }
        EXPECT_THAT(texts, HasSubstr("Version " + version() + " "));
        clickLater(dialog, IDOK);
    });
    show(script);
}

TEST_F(AboutTest, EveryWayOutEndsItWithZero)
{
    struct Way {
        UINT message;
        WPARAM wParam;
    };
    for (const Way way : {Way{WM_COMMAND, IDOK}, Way{WM_COMMAND, IDCANCEL}, Way{WM_CLOSE, 0}}) {
        endings.clear();
        DialogScript script;
        script.onDialog("leave", [way](HWND dialog) { PostMessageW(dialog, way.message, way.wParam, 0); });
        show(script);
        EXPECT_THAT(endings, ElementsAre("end 0", "end 0")) << way.message; // the second one on WM_DESTROY
    }
}

TEST_F(AboutTest, OtherCommandsDoNothing)
{
    DialogScript script;
    script.onDialog("send them", [](HWND dialog) {
        for (const int id : {0, 3, IDC_ABOUT_LOGO, 9999}) {
            SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0);
        }
        EXPECT_THAT(endings, IsEmpty());
        clickLater(dialog, IDOK);
    });
    show(script);
}

TEST_F(AboutTest, AFaultWhileOpeningLeavesTheDialogOpen)
{
    failBitmaps = 1;
    DialogScript script;
    script.onDialog("press OK", [](HWND dialog) { clickLater(dialog, IDOK); });
    show(script);
    EXPECT_THAT(store.calls(), ElementsAre("ODS UI CRASH: about, MyAboutDlgProc, 70\n"));
}

TEST_F(AboutTest, AFaultOnOkLeavesTheDialogOpen)
{
    failEndings = 1;
    DialogScript script;
    script.onDialog("press OK", [](HWND dialog) { clickLater(dialog, IDOK); })
        .step("wait for the fault", [&](HWND) { return !store.calls().empty(); })
        .onDialog("press OK again", [](HWND dialog) { clickLater(dialog, IDOK); });
    show(script);
    EXPECT_THAT(store.calls(), ElementsAre("ODS UI CRASH: about, MyAboutDlgProc, 70\n"));
    EXPECT_THAT(endings, ElementsAre("end 0", "end 0"));
}

TEST_F(AboutTest, ShowsNothingWithoutItsTemplate)
{
    const HiddenDialog all;
    showAboutDialog(nullptr);
    EXPECT_THAT(bitmaps, IsEmpty());
}

TEST_F(AboutTest, StandsOverTheCallersWindow)
{
    expectStandsOverItsOwner(showAboutDialog, IDOK);
}

TEST_F(AboutTest, LeavesNothingBehind)
{
    expectNothingLeft([&] {
        DialogScript script;
        script.onDialog("press OK", [](HWND dialog) { clickLater(dialog, IDOK); });
        show(script);
        endings.clear();
        bitmaps.clear();
    });
}
