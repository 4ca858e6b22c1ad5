#include "policies/text_entry_dialog.h"

#include "frame/c_memory.h"
#include "frame/dialog.h"
#include "frame/narrow_handle.h"
#include "policies/control_text.h"
#include "res/resource.h"

#include <cwchar>

namespace {

struct Opening {
    const TextEntryDialog* entry;
    const wchar_t* text;
};

void onInit(HWND dialog, const Opening& opening)
{
    if (opening.text != nullptr) {
        SetDlgItemTextW(dialog, IDC_ENTRY_TEXT, opening.text);
    }
    if (opening.entry->onInit != nullptr) {
        opening.entry->onInit(dialog);
    }
}

void onOk(HWND dialog, const TextEntryDialog& entry)
{
    const wchar_t* typed = controlText(dialog, IDC_ENTRY_TEXT);
    CBlock<wchar_t> copy(_wcsdup(entry.taken != nullptr ? entry.taken(typed) : typed));
    if (!copy) {
        return; // memory is short: what was typed stays in the dialog
    }
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the copy travels in the end code
    EndDialog(dialog, NarrowHandle::of(copy.release()).carrier());
}

void onCommand(HWND dialog, const TextEntryDialog& entry, int id)
{
    switch (id) {
    case IDOK:
        onOk(dialog, entry);
        break;
    case IDCANCEL:
        EndDialog(dialog, 0);
        break;
    default:
        entry.onCommand(dialog, id);
        break;
    }
}

INT_PTR CALLBACK MyDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<const Opening*>(lParam)->entry));
    }
    const auto* entry = reinterpret_cast<const TextEntryDialog*>(GetWindowLongPtrW(dialog, GWLP_USERDATA));
    if (entry == nullptr) {
        return FALSE; // what comes before WM_INITDIALOG
    }
    return guardProcedure(entry->site, [&]() -> INT_PTR {
        switch (message) {
        case WM_INITDIALOG:
            onInit(dialog, *reinterpret_cast<const Opening*>(lParam));
            return TRUE;
        case WM_COMMAND:
            onCommand(dialog, *entry, LOWORD(wParam));
            return TRUE;
        case WM_DESTROY:
            return TRUE;
        default:
            return FALSE;
        }
    });
}

} // namespace

INT_PTR openTextEntry(const TextEntryDialog& entry, HWND owner, const wchar_t* text)
{
    const Opening opening{&entry, text};
    return openDialog(entry.templateId, owner, MyDlgProc, reinterpret_cast<LPARAM>(&opening));
}

wchar_t* enteredText(INT_PTR endCode)
{
    return endCode == 0 || endCode == -1 ? nullptr : NarrowHandle::fromCarrier(endCode).as<wchar_t>();
}
