#include "policies/process_chooser.h"

#include "frame/crash_guard.h"
#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/list_ctrl.h"
#include "frame/list_sort.h"
#include "frame/redraw_off.h"
#include "frame/selection_buttons.h"
#include "policies/process_enumerators.h"
#include "res/resource.h"

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

BOOL onInit(HWND dialog)
{
    DialogList list(dialog, IDC_PROCESS_LIST);
    list.insertColumn(0, kColumn);
    list.addExtendedStyle(kListStyles);
    enableItem(dialog, IDOK, false);
    rowCounter = 0;
    // On failure the list stays empty.
    withRedrawOff(list,
                  [&] { enumerateProcessSnapshot(nullptr, myCallBack, static_cast<CListCtrl*>(&list)); });
    return TRUE;
}

// While the list is filled there are several of these for each row, none of which concerns the dialog: they end here
// before anything is looked up.
BOOL onNotify(HWND dialog, const NMHDR* header)
{
    if (header->idFrom != IDC_PROCESS_LIST) {
        return FALSE;
    }
    const auto* const change = reinterpret_cast<const NMLISTVIEW*>(header);
    switch (header->code) {
    case LVN_COLUMNCLICK:
        if (change->iSubItem >= 0) {
            sortRows(DialogList(dialog, IDC_PROCESS_LIST), change->iSubItem);
        }
        return TRUE;
    case LVN_ITEMCHANGED:
        if (change->uChanged != LVIF_PARAM) {
            constexpr int kButtons[] = {IDOK};
            enableBySelection(dialog, DialogList(dialog, IDC_PROCESS_LIST), kButtons);
        }
        return TRUE;
    default:
        return FALSE;
    }
}

void onOk(HWND dialog)
{
    const DialogList list(dialog, IDC_PROCESS_LIST);
    const int row = list.nextSelected();
    if (row == -1) {
        EndDialog(dialog, 0);
        return;
    }
    const std::wstring name = list.text(row, 0).substr(0, kNameLength);
    EndDialog(dialog, reinterpret_cast<INT_PTR>(_wcsdup(name.c_str())));
} // NOLINT(clang-analyzer-unix.Malloc): the copy goes to whoever opened the dialog

BOOL onCommand(HWND dialog, int id)
{
    switch (id) {
    case IDOK:
        onOk(dialog);
        break;
    case IDCANCEL:
        EndDialog(dialog, 0);
        break;
    default:
        break;
    }
    return TRUE;
}

INT_PTR CALLBACK MyDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    return guardProcedure(crash_sites::kProcessChooser, [&]() -> INT_PTR {
        switch (message) {
        case WM_INITDIALOG:
            return onInit(dialog);
        case WM_NOTIFY:
            return onNotify(dialog, reinterpret_cast<const NMHDR*>(lParam));
        case WM_COMMAND:
            return onCommand(dialog, LOWORD(wParam));
        case WM_DESTROY:
            return TRUE;
        default:
            return FALSE;
        }
    });
}

} // namespace

wchar_t* chooseProcess(HWND owner)
{
    return reinterpret_cast<wchar_t*>(openDialog(IDD_PROCESS_CHOOSER, owner, MyDlgProc, 0));
}
