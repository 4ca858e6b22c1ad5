// The About box.
#include "corvane.h"
#include "frame/dialog.h"
#include "res/resource.h"

namespace {

struct Picture {
    int control;
    int bitmap;
};
constexpr Picture kPictures[] = {{IDC_ABOUT_LOGO, IDB_ABOUT_LOGO}, {IDC_ABOUT_PICTURE, IDB_ABOUT_PICTURE}};

class AboutBox : public Dialog {
public:
    AboutBox()
        : Dialog(&crash_sites::kAbout)
    {
    }

    void show(HWND owner) { run(IDD_ABOUT, owner); }

private:
    // Gives a picture control a bitmap, or none, and releases the one that it had.
    void setPicture(int control, HBITMAP bitmap) const
    {
        const LRESULT previous = SendDlgItemMessageW(window(), control, STM_SETIMAGE, IMAGE_BITMAP,
                                                     reinterpret_cast<LPARAM>(bitmap));
        DeleteObject(reinterpret_cast<HBITMAP>(previous));
    }

    void onInit() override
    {
        HMODULE module = GetModuleHandleW(L"corvane");
        for (const Picture& picture : kPictures) {
            setPicture(picture.control, LoadBitmapW(module, MAKEINTRESOURCEW(picture.bitmap)));
        }
    }

    void onOk() override { end(0); }

    void onDestroy() override
    {
        for (const Picture& picture : kPictures) {
            setPicture(picture.control, nullptr);
        }
        // Ends a dialog that is being destroyed from outside as well.
        end(0);
    }
};

} // namespace

void showAboutDialog(HWND owner)
{
    AboutBox().show(owner);
}
