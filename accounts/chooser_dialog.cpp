// The dialog "Choose subject".
#include "corvane.h"

#include "accounts/account_data.h"
#include "accounts/sid_ctrl.h"
#include "frame/c_memory.h"
#include "frame/crash_guard.h"
#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/format_text.h"
#include "frame/message_box.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <utility>

namespace {

/// One dialog at a time.
struct State {
    CSidCtrl* list = nullptr; ///< null when no dialog is open
    void* selection = nullptr;
    /// Kept until a dialog shows: with one that cannot be shown, callers get the choice of the last one again. One that
    /// somebody else ends has chosen nothing; the last choice may be released by then.
    void* result = nullptr;
    bool searchStarted = false;
    wchar_t searchBase[256] = {};
    wchar_t typedName[256] = {};
};
State state;

/// What an open dialog owns.
struct Chooser {
    CSidCtrl list;
    const SidList* presetOwners;
};

template <std::size_t N>
void readText(HWND dialog, int id, wchar_t (&text)[N])
{
    text[0] = L'\0';
    GetDlgItemTextW(dialog, id, text, static_cast<int>(N));
}

void proposeSearchBase(HWND dialog)
{
    const CBlock<void> domain(getDomainSid());
    ODS("Domain sid=%p\n", domain.get());
    if (domain) {
        const CBlock<wchar_t> server(getDomainServer());
        wchar_t base[512];
        formatText(base, L"WinNT://%ls", server.get());
        SetDlgItemTextW(dialog, IDC_CHOOSER_BASE, base);
        return;
    }
    wchar_t computer[256] = {};
    DWORD capacity = static_cast<DWORD>(std::size(computer));
    GetComputerNameW(computer, &capacity);
    SetDlgItemTextW(dialog, IDC_CHOOSER_BASE, computer);
}

BOOL onInit(HWND dialog, Chooser& chooser)
{
    state.result = nullptr;
    chooser.list.attach(GetDlgItem(dialog, IDC_CHOOSER_LIST));
    chooser.list.setPresetOwners(chooser.presetOwners);
    state.list = &chooser.list;
    state.selection = nullptr;
    proposeSearchBase(dialog);
    state.searchStarted = false;
    checkItem(dialog, IDC_CHOOSER_SEARCH, true);
    checkItem(dialog, IDC_CHOOSER_TYPE, false);
    checkItem(dialog, IDC_CHOOSER_CUSTOM_BASE, false);
    enableItem(dialog, IDC_CHOOSER_BASE, false);
    enableItem(dialog, IDC_CHOOSER_NAME, false);
    return TRUE;
}

void enableSearchBase(HWND dialog)
{
    enableItem(dialog, IDC_CHOOSER_BASE, itemIsChecked(dialog, IDC_CHOOSER_CUSTOM_BASE));
}

void onMode(HWND dialog, int clicked, int other)
{
    if (!itemIsChecked(dialog, clicked)) {
        return;
    }
    const bool typing = clicked == IDC_CHOOSER_TYPE;
    checkItem(dialog, other, false);
    if (typing) {
        enableItem(dialog, IDC_CHOOSER_BASE, false);
    } else {
        enableSearchBase(dialog);
    }
    enableItem(dialog, IDC_CHOOSER_NAME, typing);
    enableItem(dialog, IDC_CHOOSER_LIST, !typing);
    enableItem(dialog, IDC_CHOOSER_CUSTOM_BASE, !typing);
}

void onNameChange(HWND dialog)
{
    readText(dialog, IDC_CHOOSER_NAME, state.typedName);
    SetDlgItemTextW(dialog, IDOK, state.typedName[0] != L'\0' ? L"Add" : L"Search");
}

/// Makes a value the dialog's result: a SID as a copy, which is the caller's.
void storeResult(void* value)
{
    state.result = isSid(value) ? sidDup(value) : value;
}

void chooseTypedName(HWND dialog)
{
    const AccountData account(wcscmp(state.typedName, L"Anyone") == 0 ? CORVANE_ANYONE
                                                                      : getSidByNameW(state.typedName));
    if (!account) {
        showMessage(dialog,
                    "The user/group name you typed is unavaliable. Pleaase check your spelling or clean name "
                    "you typed and try search it from Active Directory tree.",
                    captions::kWarning);
        return;
    }
    storeResult(account.get());
    EndDialog(dialog, state.result != nullptr);
}

/// @param base  null lets the fill pick one by itself.
void startSearch(HWND dialog, const wchar_t* base)
{
    SetDlgItemTextW(dialog, IDOK, L"Add");
    enableItem(dialog, IDOK, false);
    enableItem(dialog, IDCANCEL, false);
    state.list->startFill(base);
    for (const int id :
         {IDC_CHOOSER_LIST, IDC_CHOOSER_BASE, IDC_CHOOSER_SEARCH, IDC_CHOOSER_TYPE, IDC_CHOOSER_CUSTOM_BASE})
    {
        enableItem(dialog, id, false);
    }
    state.searchStarted = true;
}

void pickSelected(HWND dialog)
{
    ODS("onOk\n");
    if (state.list->handle() == nullptr) {
        return; // somebody destroyed the list alone
    }
    const int row = state.list->nextSelected();
    if (row == -1) {
        return;
    }
    ODS("onOk: %d\n", row);
    state.selection = reinterpret_cast<void*>(state.list->data(row));
    ODS("\treturn sid = %p\n", state.selection);
    storeResult(state.selection);
    EndDialog(dialog, state.result != nullptr);
    ODS("\treturned sid = %p\n", state.result);
}

void onOk(HWND dialog)
{
    if (itemExists(dialog, IDC_CHOOSER_NAME) && itemIsChecked(dialog, IDC_CHOOSER_TYPE)) {
        readText(dialog, IDC_CHOOSER_NAME, state.typedName);
        if (state.typedName[0] != L'\0') {
            chooseTypedName(dialog);
            return;
        }
    }
    if (itemExists(dialog, IDC_CHOOSER_BASE) && !state.searchStarted) {
        if (itemIsChecked(dialog, IDC_CHOOSER_CUSTOM_BASE)) {
            readText(dialog, IDC_CHOOSER_BASE, state.searchBase);
            startSearch(dialog, state.searchBase);
            return;
        }
        startSearch(dialog, nullptr); // and go on: wanted, support reads the line of the pick that follows
    }
    pickSelected(dialog);
}

BOOL onCommand(HWND dialog, int id)
{
    switch (id) {
    case IDC_CHOOSER_CUSTOM_BASE:
        enableSearchBase(dialog);
        return TRUE;
    case IDC_CHOOSER_SEARCH:
        onMode(dialog, IDC_CHOOSER_SEARCH, IDC_CHOOSER_TYPE);
        return TRUE;
    case IDC_CHOOSER_TYPE:
        onMode(dialog, IDC_CHOOSER_TYPE, IDC_CHOOSER_SEARCH);
        return TRUE;
    case IDC_CHOOSER_NAME:
        onNameChange(dialog);
        return TRUE;
    case IDOK:
        onOk(dialog);
        return TRUE;
    case IDCANCEL:
        state.result = nullptr;
        EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

void onSelection(HWND dialog)
{
    const int row = state.list->nextSelected();
    if (row == -1) {
        return;
    }
    state.selection = reinterpret_cast<void*>(state.list->data(row));
    if (IsWindowEnabled(GetDlgItem(dialog, IDCANCEL))) { // no fill runs
        enableItem(dialog, IDOK, state.selection != nullptr);
    }
}

void onFilterChange(int column)
{
    if (column == -1) {
        return;
    }
    state.list->applyFilter(column);
    RedrawWindow(state.list->handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}

BOOL onNotify(HWND dialog, NMHDR& header)
{
    if (state.list == nullptr) {
        return FALSE;
    }
    LRESULT answer = 0;
    switch (header.code) {
    case LVN_ITEMCHANGED:
    case LVN_ITEMACTIVATE:
    case LVN_ODSTATECHANGED:
        onSelection(dialog);
        break;
    case LVN_COLUMNCLICK:
        state.list->onColumnClick(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem);
        break;
    case HDN_FILTERCHANGE:
        onFilterChange(reinterpret_cast<const NMHEADERW&>(header).iItem);
        break;
    case NM_CUSTOMDRAW:
        if (header.hwndFrom != state.list->handle()) {
            return FALSE;
        }
        answer = state.list->colorCell(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
        break;
    default:
        return FALSE;
    }
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, answer);
    return TRUE;
}

INT_PTR handleMessage(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        return onInit(dialog, *reinterpret_cast<Chooser*>(lParam));
    case WM_COMMAND:
        return onCommand(dialog, LOWORD(wParam));
    case WM_NOTIFY:
        return onNotify(dialog, *reinterpret_cast<NMHDR*>(lParam));
    case WM_DESTROY:
        state.list = nullptr;
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK MyDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    INT_PTR result = FALSE;
    if (!runGuarded([&] { result = handleMessage(dialog, message, wParam, lParam); })) {
        runGuarded([] { ODS("SID DLG: MyDlgProc: SIGSEGV\n"); });
        return FALSE;
    }
    return result;
}

/// @return the dialog's end code.
INT_PTR showChooser(HWND parent, const SidList* presetOwners)
{
    state.selection = nullptr;
    Chooser chooser{{}, presetOwners};
    return openDialog(IDD_CHOOSER, parent, MyDlgProc, reinterpret_cast<LPARAM>(&chooser));
}

} // namespace

void* chooseSidFromUserInput(HWND parent)
{
    const INT_PTR ended = showChooser(parent, nullptr);
    ODS("got R1=%p %p\n", reinterpret_cast<void*>(ended), state.result);
    return state.result;
}

void* chooseSidFromUserInput2(HWND parent, SidList* presetOwners)
{
    const INT_PTR ended = showChooser(parent, presetOwners);
    ODS("got R2=%p %p\n", reinterpret_cast<void*>(ended), state.result);
    return state.result;
}
