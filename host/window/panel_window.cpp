#include "host/window/panel_window.h"

#include "host/resource.h"
#include "host/window/panel_layout.h"

namespace host {

bool PanelWindow::create(HINSTANCE instance)
{
    m_instance = instance;
    return CreateDialogParamW(instance, MAKEINTRESOURCEW(IDD_PANEL), nullptr, procedure,
                              reinterpret_cast<LPARAM>(this)) != nullptr;
}

void PanelWindow::show()
{
    ShowWindow(m_window, SW_SHOWDEFAULT);
    UpdateWindow(m_window);
}

void PanelWindow::run()
{
    const HACCEL accelerators = LoadAcceleratorsW(m_instance, MAKEINTRESOURCEW(IDA_PANEL));
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorW(m_window, accelerators, &message) == 0 &&
            !IsDialogMessageW(m_window, &message))
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

INT_PTR CALLBACK PanelWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        auto* self = reinterpret_cast<PanelWindow*>(lParam);
        self->m_window = window;
        self->initialize();
        SetWindowLongPtrW(window, DWLP_USER, lParam); // last: what the controls tell before is of no interest
        return TRUE;
    }
    auto* self = reinterpret_cast<PanelWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    return self == nullptr ? FALSE : self->handle(message, wParam, lParam);
}

INT_PTR PanelWindow::handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_COMMAND:
        command(LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_NOTIFY:
        notified(*reinterpret_cast<const NMHDR*>(lParam));
        return FALSE;
    case WM_INITMENUPOPUP:
        updateMenu(reinterpret_cast<HMENU>(wParam));
        return TRUE;
    case WM_SIZE:
        if (wParam != SIZE_MINIMIZED) {
            layOut();
        }
        return TRUE;
    case WM_GETMINMAXINFO: {
        const SIZE smallest = smallestPanel(m_window);
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {smallest.cx, smallest.cy};
        return TRUE;
    }
    case WM_CLOSE:
        if (!hasOpenDialog() && mayClose()) {
            DestroyWindow(m_window);
        }
        return TRUE;
    case WM_QUERYENDSESSION:
        SetWindowLongPtrW(m_window, DWLP_MSGRESULT, mayEndSession() ? TRUE : FALSE);
        return TRUE;
    case WM_ENDSESSION:
        if (wParam == FALSE) {
            // The session goes on, and the reason is not for the next time.
            ShutdownBlockReasonDestroy(m_window);
        }
        return TRUE;
    case WM_DESTROY:
        SetWindowLongPtrW(m_window, DWLP_USER, 0);
        tearDown();
        PostQuitMessage(0);
        return TRUE;
    default:
        return message >= WM_APP && posted(message) ? TRUE : FALSE;
    }
}

void PanelWindow::initialize()
{
    m_status = std::make_unique<StatusLine>(control(IDC_STATUS));
    const auto icon = [this](int widthMetric, int heightMetric) {
        return reinterpret_cast<LPARAM>(LoadImageW(m_instance, MAKEINTRESOURCEW(IDI_PANEL), IMAGE_ICON,
                                                   GetSystemMetrics(widthMetric),
                                                   GetSystemMetrics(heightMetric), LR_SHARED));
    };
    SendMessageW(m_window, WM_SETICON, ICON_BIG, icon(SM_CXICON, SM_CYICON));
    SendMessageW(m_window, WM_SETICON, ICON_SMALL, icon(SM_CXSMICON, SM_CYSMICON));
    setUp();
    layOut();
}

void PanelWindow::layOut()
{
    layOutPanel(m_window);
    m_status->resize();
    resized();
}

/// Whether a dialog or a box is open, behind which the panel cannot go: what opened it goes on when it closes. The
/// person is shown it.
bool PanelWindow::hasOpenDialog()
{
    if (IsWindowEnabled(m_window)) {
        return false;
    }
    SetForegroundWindow(GetLastActivePopup(m_window));
    MessageBeep(MB_ICONWARNING);
    return true;
}

/// Asks nothing: the system has its own screen for programs that want the session to go on, with the reason.
bool PanelWindow::mayEndSession()
{
    const bool dialogIsOpen = IsWindowEnabled(m_window) == FALSE;
    if (!dialogIsOpen && !hasUnsavedWork()) {
        return true;
    }
    ShutdownBlockReasonCreate(m_window,
                              dialogIsOpen ? L"A dialog is open." : L"The rules have unsaved changes.");
    return false;
}

void PanelWindow::enable(int id, bool enabled)
{
    const HWND which = control(id);
    if (!enabled && GetFocus() == which) {
        SetFocus(control(IDC_RULES));
    }
    EnableWindow(which, enabled);
}

} // namespace host
