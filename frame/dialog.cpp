#include "frame/dialog.h"

#include <utility>

namespace {

// Some systems tell of a click when an automatic radio button merely gets the keyboard. One that was clicked has checked
// itself before it tells.
bool isPassingFocus(WPARAM wParam, LPARAM lParam)
{
    HWND const button = reinterpret_cast<HWND>(lParam);
    return button != nullptr && HIWORD(wParam) == BN_CLICKED &&
           (SendMessageW(button, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0 &&
           (GetWindowLongPtrW(button, GWL_STYLE) & BS_TYPEMASK) == BS_AUTORADIOBUTTON &&
           SendMessageW(button, BM_GETCHECK, 0, 0) != BST_CHECKED;
}

// The dialog that this thread is about to create. It finds its object here, because the creation parameter is not
// free: hosts that watch a dialog find the edited record in it.
thread_local Dialog* opening = nullptr;

// A platform that does not check for a missing template faults on it; there, too, the dialog just cannot be created.
INT_PTR openWithoutTemplate(HWND owner, DLGPROC procedure, LPARAM parameter)
{
    INT_PTR code = -1;
    runGuarded([&] { code = DialogBoxIndirectParamW(nullptr, nullptr, owner, procedure, parameter); });
    return code;
}

} // namespace

INT_PTR Dialog::run(int templateId, HWND owner, LPARAM parameter)
{
    HMODULE module = GetModuleHandleW(L"corvane");
    // Without the module the program's own resources would be searched, which may hold another dialog under
    // this number: rather no template, and the platform refuses the dialog.
    HRSRC resource = module ? FindResourceW(module, MAKEINTRESOURCEW(templateId), RT_DIALOG) : nullptr;
    HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;

    HWND top = owner != nullptr ? GetAncestor(owner, GA_ROOT) : nullptr; // what the platform disables
    const bool ownerWasEnabled = top != nullptr && IsWindowEnabled(top);

    // What is opened from within gets its own turn before this one is created or after it has its object.
    Dialog* const outer = std::exchange(opening, this);
    const INT_PTR code = loaded ? DialogBoxIndirectParamW(nullptr, static_cast<LPCDLGTEMPLATEW>(loaded),
                                                          owner, MyDlgProc, parameter)
                                : openWithoutTemplate(owner, MyDlgProc, parameter);
    opening = outer;
    // A dialog that was destroyed without an end leaves its owner disabled on some systems.
    if (ownerWasEnabled && IsWindow(top)) {
        EnableWindow(top, TRUE);
    }
    return code;
}

void Dialog::reportCrash() const
{
    if (m_site != nullptr) {
        crash_guard_detail::report(*m_site);
    }
}

Reply Dialog::command(int id)
{
    switch (id) {
    case IDOK:
        onOk();
        return Reply::with(0);
    case IDCANCEL:
        onCancel();
        return Reply::with(0);
    default:
        return {onCommand(id), 0};
    }
}

Reply Dialog::dispatch(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        onInit();
        return Reply::with(TRUE);
    case WM_COMMAND:
        if (isPassingFocus(wParam, lParam)) {
            return {};
        }
        return command(LOWORD(wParam));
    case WM_NOTIFY:
        return onNotify(*reinterpret_cast<NMHDR*>(lParam));
    case WM_CLOSE:
        return {onClose(), 0};
    case WM_DESTROY:
        onDestroy();
        return Reply::with(0);
    default:
        return {};
    }
}

INT_PTR CALLBACK Dialog::MyDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    // Sent a second time by somebody else, it finds the object of the first.
    if (Dialog* const created = message == WM_INITDIALOG ? std::exchange(opening, nullptr) : nullptr) {
        created->m_window = window;
        SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(created));
    }
    auto* const dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (dialog == nullptr) {
        return FALSE; // what comes before WM_INITDIALOG
    }
    Reply reply;
    if (!runGuarded([&] { reply = dialog->dispatch(message, wParam, lParam); })) {
        dialog->reportCrash();
        reply = {};
    }
    if (message == WM_NCDESTROY) {
        dialog->m_window = nullptr;
        SetWindowLongPtrW(window, DWLP_USER, 0); // what comes after, from whomever, finds no object
    }
    if (!reply.handled || message == WM_INITDIALOG) {
        return reply.handled ? TRUE : FALSE;
    }
    SetWindowLongPtrW(window, DWLP_MSGRESULT, reply.value);
    return TRUE;
}
