#include "shell/about_box.h"

#include "frame/crash_guard.h"
#include "frame/dialog.h"
#include "res/resource.h"

namespace {

struct Picture {
    int control;
    int bitmap;
};
constexpr Picture kPictures[] = {{IDC_ABOUT_LOGO, IDB_ABOUT_LOGO}, {IDC_ABOUT_PICTURE, IDB_ABOUT_PICTURE}};

// Gives a picture control a bitmap, or none, and releases the one that it had.
void setPicture(HWND dialog, int control, HBITMAP bitmap)
{
    const LRESULT previous =
        SendDlgItemMessageW(dialog, control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
    DeleteObject(reinterpret_cast<HBITMAP>(previous));
}

void onInit(HWND dialog)
{
    HMODULE module = GetModuleHandleW(L"corvane");
    for (const Picture& picture : kPictures) {
        setPicture(dialog, picture.control, LoadBitmapW(module, MAKEINTRESOURCEW(picture.bitmap)));
    }
}

void onDestroy(HWND dialog)
{
    for (const Picture& picture : kPictures) {
        setPicture(dialog, picture.control, nullptr);
    }
    // Ends a dialog that is being destroyed from outside as well.
    EndDialog(dialog, 0);
}

INT_PTR CALLBACK MyAboutDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM /*lParam*/)
{
    return guardProcedure(crash_sites::kAbout, [&]() -> INT_PTR {
        switch (message) {
        case WM_INITDIALOG:
            onInit(dialog);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) {
                return FALSE;
            }
            EndDialog(dialog, 0);
            return TRUE;
        case WM_DESTROY:
            onDestroy(dialog);
            return TRUE;
        default:
            return FALSE;
        }
    });
}

} // namespace

void showAboutDialog(HWND owner)
{
    openDialog(IDD_ABOUT, owner, MyAboutDlgProc, 0);
}
