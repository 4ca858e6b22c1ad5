// The chooser of a running process.
#include "corvane.h"
#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/list_ctrl.h"
#include "frame/list_notice.h"
#include "frame/list_sort.h"
#include "frame/redraw_off.h"
#include "processes/enumerators.h"
#include "res/resource.h"
#include "store/owned.h"

#include <cwchar>

namespace {

constexpr ListColumn kColumn{L"Process Name", LVCFMT_LEFT, 310};
constexpr DWORD kListStyles =
    LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT | LVS_EX_HEADERDRAGDROP | LVS_EX_LABELTIP;
constexpr std::size_t kNameLength = 259; ///< characters of a result

// The rows' item data: the order in which the processes were found, one count for the whole module.
std::uint32_t rowCounter = 0;

// One row per process, also for a program that runs several times. The list itself puts rows in order.
int myCallBack(DWORD /*processId*/, const wchar_t* imageName, void* context)
{
    return static_cast<int>(guardProcedure(crash_sites::kProcessChooserRow, [&]() -> INT_PTR {
        const auto& list = *static_cast<const CListCtrl*>(context);
        const int row = list.insertRow(0, imageName != nullptr ? imageName : L"", 0);
        list.setData(row, static_cast<LPARAM>(rowCounter));
        ++rowCounter;
        return 1;
    }));
}

class ProcessChooser : public Dialog {
public:
    ProcessChooser()
        : Dialog(&crash_sites::kProcessChooser)
    {
    }

    /// @return the name as a malloc block that passes to the caller, null when none was chosen, -1 when the dialog
    ///         could not be shown.
    wchar_t* choose(HWND owner)
    {
        if (run(IDD_PROCESS_CHOOSER, owner) == -1 && !m_name) {
            return reinterpret_cast<wchar_t*>(INT_PTR{-1});
        }
        return m_name.release();
    }

private:
    void onInit() override;
    Reply onNotify(NMHDR& header) override;
    void onOk() override;
    bool onCommand(int /*id*/) override { return true; }

    CBlock<wchar_t> m_name; ///< what OK hands out; the end code is too narrow for its address
};

void ProcessChooser::onInit()
{
    DialogList list(window(), IDC_PROCESS_LIST);
    list.insertColumn(0, kColumn);
    list.addExtendedStyle(kListStyles);
    enableItem(window(), IDOK, false);
    rowCounter = 0;
    // On failure the list stays empty.
    withRedrawOff(list,
                  [&] { enumerateProcessSnapshot(nullptr, myCallBack, static_cast<CListCtrl*>(&list)); });
}

// While the list is filled there are several of these for each row, none of which concerns the dialog: they end here
// before anything is looked up.
Reply ProcessChooser::onNotify(NMHDR& header)
{
    if (header.idFrom != IDC_PROCESS_LIST) {
        return {};
    }
    const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
    switch (header.code) {
    case LVN_COLUMNCLICK:
        if (change.iSubItem >= 0) {
            sortRows(DialogList(window(), IDC_PROCESS_LIST), change.iSubItem);
        }
        return Reply::with(0);
    case LVN_ITEMCHANGED:
        if (changesSelection(header)) {
            constexpr int kButtons[] = {IDOK};
            enableBySelection(window(), DialogList(window(), IDC_PROCESS_LIST), kButtons);
        }
        return Reply::with(0);
    case NM_DBLCLK:
        if (DialogList(window(), IDC_PROCESS_LIST).nextSelected() != -1) {
            onOk();
        }
        return Reply::with(0);
    default:
        return {};
    }
}

void ProcessChooser::onOk()
{
    const DialogList list(window(), IDC_PROCESS_LIST);
    const int row = list.nextSelected();
    if (row != -1) {
        m_name.reset(_wcsdup(list.text(row, 0).substr(0, kNameLength).c_str()));
    }
    end(reinterpret_cast<INT_PTR>(m_name.get()));
}

} // namespace

wchar_t* chooseProcess(HWND owner)
{
    return ProcessChooser().choose(owner);
}
