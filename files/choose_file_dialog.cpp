#include "files/choose_file_dialog.h"

#include "files/dir_tree_ctrl.h"
#include "frame/crash_guard.h"
#include "frame/dialog.h"
#include "frame/narrow_handle.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <direct.h>

namespace {

class CDirDlg : public CWnd {
public:
    explicit CDirDlg(bool foldersOnly)
        : m_foldersOnly(foldersOnly)
    {
    }

    BOOL onInit();
    void onOk();
    CDirTreeCtrl& tree() { return m_tree; }

private:
    bool m_foldersOnly;
    CDirTreeCtrl m_tree;
    std::wstring m_path; ///< what OK hands out; read after the dialog is gone
};

// The dialog that opened last; never cleared.
CDirDlg* openDirDlg = nullptr;

BOOL CDirDlg::onInit()
{
    if (m_tree.handle() != nullptr) {
        return TRUE;
    }
    m_tree.attach(GetDlgItem(handle(), IDC_CHOOSE_FILE_TREE));
    if (m_tree.handle() == nullptr) {
        return TRUE;
    }
    m_tree.display(nullptr, !m_foldersOnly);
    wchar_t folder[260];
    if (_wgetcwd(folder, static_cast<int>(std::size(folder))) != nullptr) {
        m_tree.setSelectedPath(folder);
    }
    return TRUE;
}

void CDirDlg::onOk()
{
    m_path = m_tree.fullPath(m_tree.selected());
    ODS("onOK: %ls\n", m_path.c_str());
    EndDialog(handle(), NarrowHandle::of(m_path.c_str()).signedCarrier());
}

BOOL onCommand(HWND dialog, int id)
{
    switch (id) {
    case IDOK:
        openDirDlg->onOk();
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

BOOL onNotify(const NMHDR* header)
{
    if (header->code != TVN_ITEMEXPANDEDW) {
        return FALSE;
    }
    openDirDlg->tree().onItemExpanded(*reinterpret_cast<const NMTREEVIEWW*>(header));
    return TRUE;
}

INT_PTR handleMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        openDirDlg = reinterpret_cast<CDirDlg*>(lParam);
        openDirDlg->attach(dialog);
        return openDirDlg->onInit();
    case WM_NOTIFY:
        return onNotify(reinterpret_cast<const NMHDR*>(lParam));
    case WM_COMMAND:
        return onCommand(dialog, LOWORD(wParam));
    case WM_DESTROY:
        return TRUE;
    default:
        return FALSE;
    }
}

// Guarded without a line: support's list of crash lines has none for this dialog.
INT_PTR CALLBACK MyDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    INT_PTR result = FALSE;
    return runGuarded([&] { result = handleMessage(dialog, message, wParam, lParam); }) ? result : FALSE;
}

} // namespace

wchar_t* chooseFileImpl(HWND owner, unsigned foldersOnly)
{
    CDirDlg dialog(foldersOnly != 0);
    const INT_PTR ended = openDialog(IDD_CHOOSE_FILE, owner, MyDlgProc, reinterpret_cast<LPARAM>(&dialog));
    if (ended == 0 || ended == -1) {
        return nullptr;
    }
    return _wcsdup(NarrowHandle::fromCarrier(ended).as<const wchar_t>());
}
