#include "list_window.h"

#include "bench/support/list_view.h"

ListWindow::ListWindow()
    : m_window(CreateWindowExW(0, L"Static", L"accounts bench", WS_POPUP | WS_VISIBLE, 0, 0, 520, 420,
                               nullptr, nullptr, nullptr, nullptr))
    , m_cancel(CreateWindowExW(0, L"Button", L"", WS_CHILD | WS_DISABLED, 0, 0, 1, 1, m_window,
                               reinterpret_cast<HMENU>(INT_PTR{IDCANCEL}), nullptr, nullptr))
    , m_list(CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_SINGLESEL, 10, 10,
                             475, 300, m_window, nullptr, nullptr, nullptr))
    , m_filters(m_list)
{
    settle(m_window);
}

ListWindow::~ListWindow()
{
    DestroyWindow(m_window);
}

Time ListWindow::waitForFill() const
{
    Time first{};
    bool seen = false;
    MSG message;
    while (!IsWindowEnabled(m_cancel) && GetMessageW(&message, nullptr, 0, 0) > 0) {
        const bool paints = message.message == WM_PAINT && message.hwnd == m_list;
        DispatchMessageW(&message);
        if (!seen && paints && list_view::rowCount(m_list) > 0) {
            seen = true;
            first = now();
        }
    }
    UpdateWindow(m_list);
    return seen ? first : now();
}

void ListWindow::waitFor(HANDLE thread) const
{
    while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        settle(m_window);
    }
    UpdateWindow(m_list);
}
