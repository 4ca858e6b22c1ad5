#include "quota/busy_notice.h"

namespace {

constexpr DWORD kPatience = 500; // milliseconds
constexpr wchar_t kClass[] = L"CorvaneBusyNotice";

/// The window class lasts as long as the notice: the library may be unloaded after it.
class NoticeClass {
public:
    NoticeClass()
    {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.hInstance = m_instance;
        windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_WAIT));
        windowClass.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_3DFACE + 1));
        windowClass.lpszClassName = kClass;
        RegisterClassW(&windowClass); // another thread's notice may have done it
    }
    NoticeClass(const NoticeClass&) = delete;
    NoticeClass& operator=(const NoticeClass&) = delete;
    ~NoticeClass() { UnregisterClassW(kClass, m_instance); } // stays while another thread's stands

private:
    HINSTANCE m_instance = GetModuleHandleW(nullptr);
};

/// Lets the messages through that other threads wait for, until a thread has ended.
void awaitEnd(HANDLE thread)
{
    while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_SENDMESSAGE) == WAIT_OBJECT_0 + 1) {
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

} // namespace

// Everything is asked of the window here: asked by the other thread it would have to wait for this one.
BusyNotice::BusyNotice(HWND over, const wchar_t* what, const wchar_t* with)
    : m_what(what)
    , m_with(with)
    , m_font(static_cast<WPARAM>(SendMessageW(over, WM_GETFONT, 0, 0)))
    , m_place()
    , m_margin()
    , m_done(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    constexpr RECT kUnits{7, 6, 190, 32}; // margins, and the size of all
    RECT pixels = kUnits;
    MapDialogRect(over, &pixels);
    m_margin = {pixels.left, pixels.top};
    GetWindowRect(over, &m_place);
    const POINT middle{(m_place.left + m_place.right) / 2, (m_place.top + m_place.bottom) / 2};
    m_place = {middle.x - pixels.right / 2, middle.y - pixels.bottom / 2, pixels.right, pixels.bottom};
    if (m_done) {
        m_thread.reset(
            CreateThread(nullptr, 0, threadProc, this, 0, nullptr)); // without one there is no notice
    }
}

BusyNotice::~BusyNotice()
{
    if (m_thread) {
        SetEvent(m_done.get());
        awaitEnd(m_thread.get());
    }
}

DWORD WINAPI BusyNotice::threadProc(void* self)
{
    const auto* notice = static_cast<const BusyNotice*>(self);
    if (WaitForSingleObject(notice->m_done.get(), kPatience) == WAIT_TIMEOUT) {
        notice->showUntilDone();
    }
    return 0;
}

void BusyNotice::showUntilDone() const
{
    const NoticeClass windowClass;
    const HWND window = makeWindow();
    if (window == nullptr) {
        return;
    }
    ShowWindow(window, SW_SHOWNOACTIVATE);
    UpdateWindow(window);
    const HANDLE done = m_done.get();
    while (MsgWaitForMultipleObjects(1, &done, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
    }
    DestroyWindow(window);
}

// It has no owner: with one of another thread it would share that thread's input, and wait for it.
HWND BusyNotice::makeWindow() const
{
    const HWND window =
        CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kClass, m_what.c_str(),
                        WS_POPUP | WS_DLGFRAME, m_place.left, m_place.top, m_place.right, m_place.bottom,
                        nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (window != nullptr) {
        makeLine(window, 0, SS_LEFTNOWORDWRAP, m_what);
        makeLine(window, 1, SS_PATHELLIPSIS, m_with);
    }
    return window;
}

HWND BusyNotice::makeLine(HWND window, int index, DWORD style, const std::wstring& text) const
{
    RECT area;
    GetClientRect(window, &area);
    const int height = (area.bottom - 2 * m_margin.cy) / 2;
    const HWND line = CreateWindowExW(0, L"STATIC", text.c_str(), WS_CHILD | WS_VISIBLE | SS_NOPREFIX | style,
                                      m_margin.cx, m_margin.cy + index * height, area.right - 2 * m_margin.cx,
                                      height, window, nullptr, GetModuleHandleW(nullptr), nullptr);
    SendMessageW(line, WM_SETFONT, m_font, FALSE);
    return line;
}
