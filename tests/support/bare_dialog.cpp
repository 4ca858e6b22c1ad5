#include "tests/support/bare_dialog.h"

#include <commctrl.h>

namespace {
INT_PTR CALLBACK ignore(HWND, UINT, WPARAM, LPARAM)
{
    return FALSE;
}
} // namespace

BareDialog::BareDialog(int number)
{
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&classes);
    static const HMODULE library = LoadLibraryW(L"corvane.dll"); // stays: other tests import it

    const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(number), RT_DIALOG);
    if (found != nullptr) {
        const auto* const loaded = static_cast<LPCDLGTEMPLATEW>(LockResource(LoadResource(library, found)));
        m_window = CreateDialogIndirectParamW(nullptr, loaded, nullptr, ignore, 0);
    }
}

BareDialog::~BareDialog()
{
    if (m_window != nullptr) {
        DestroyWindow(m_window);
    }
}
