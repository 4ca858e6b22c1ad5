// The "Choose file..." dialog.
#include "corvane.h"
#include "files/dir_tree_ctrl.h"
#include "files/listing_thread.h"
#include "frame/dialog.h"
#include "frame/narrow_handle.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <direct.h>

namespace {

// Guarded without a line: support's list of crash lines has none for this dialog.
class CDirDlg : public Dialog {
public:
    explicit CDirDlg(bool foldersOnly)
        : Dialog(nullptr)
        , m_foldersOnly(foldersOnly)
    {
    }

    /// @return the chosen path, a malloc block that passes to the caller; null when nothing was chosen.
    wchar_t* choose(HWND owner)
    {
        run(IDD_CHOOSE_FILE, owner, reinterpret_cast<LPARAM>(this));
        return m_chosen ? _wcsdup(m_path.c_str()) : nullptr;
    }

private:
    void onInit() override;
    Reply onNotify(NMHDR& header) override;
    void onOk() override;

    // A fault in it ends the listing; this dialog tells of none.
    template <class Work>
    static void list(Work&& work)
    {
        const ListingThread prepared;
        runGuarded(work);
    }

    bool m_foldersOnly;
    CDirTreeCtrl m_tree;
    std::wstring m_path;   ///< what OK hands out
    bool m_chosen = false; ///< whether it was OK that ended the dialog
};

void CDirDlg::onInit()
{
    if (m_tree.handle() != nullptr) {
        return;
    }
    m_tree.attach(GetDlgItem(window(), IDC_CHOOSE_FILE_TREE));
    if (m_tree.handle() == nullptr) {
        return;
    }
    list([this] {
        m_tree.display(nullptr, !m_foldersOnly);
        wchar_t folder[260];
        if (_wgetcwd(folder, static_cast<int>(std::size(folder))) != nullptr) {
            m_tree.setSelectedPath(folder);
        }
    });
}

void CDirDlg::onOk()
{
    m_path = m_tree.fullPath(m_tree.selected());
    ODS("onOK: %ls\n", m_path.c_str());
    m_chosen = true;
    // The address of the path, as a signed 32-bit number: whoever watches the dialog from outside gets this one.
    end(NarrowHandle::of(m_path.c_str()).signedCarrier());
}

Reply CDirDlg::onNotify(NMHDR& header)
{
    if (header.code != TVN_ITEMEXPANDEDW) {
        return {};
    }
    list([&] { m_tree.onItemExpanded(reinterpret_cast<const NMTREEVIEWW&>(header)); });
    return Reply::with(0);
}

} // namespace

wchar_t* chooseFileImpl(HWND owner, unsigned foldersOnly)
{
    return CDirDlg(foldersOnly != 0).choose(owner);
}
