#include "tests/support/bare_dialog.h"

#include "tests/support/library_template.h"

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
    if (LPCDLGTEMPLATEW loaded = libraryTemplate(number)) {
        m_window = CreateDialogIndirectParamW(nullptr, loaded, nullptr, ignore, 0);
    }
}

BareDialog::~BareDialog()
{
    if (m_window != nullptr) {
        DestroyWindow(m_window);
    }
}
