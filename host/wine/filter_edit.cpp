#include "host/wine/filter_edit.h"

#include "host/window/window_text.h"

#include <commctrl.h>

#include <memory>

namespace host {
namespace {

constexpr UINT_PTR kEditSubclass = 1;
constexpr int kEditMargin = 4; // pixels

class FilterEdit {
public:
    explicit FilterEdit(HWND edit)
        : m_edit(edit)
    {
    }

    /// What stands there now is what Esc brings back.
    void begin() { m_before = windowText(m_edit); }

    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam)
    {
        switch (message) {
        case WM_SETFOCUS:
            begin();
            break;
        case WM_GETDLGCODE:
            if (const auto* key = reinterpret_cast<const MSG*>(lParam);
                key != nullptr && key->message == WM_KEYDOWN && isOurs(key->wParam))
            {
                return DLGC_WANTMESSAGE;
            }
            break;
        case WM_KEYDOWN:
            if (isOurs(wParam)) {
                end(wParam);
                return 0;
            }
            break;
        case WM_CHAR:
            if (wParam == VK_RETURN || wParam == VK_ESCAPE) {
                return 0; // the edit would beep
            }
            break;
        default:
            break;
        }
        return DefSubclassProc(m_edit, message, wParam, lParam);
    }

private:
    static bool isOurs(WPARAM key) { return key == VK_RETURN || key == VK_ESCAPE; }

    void end(WPARAM key)
    {
        if (key == VK_ESCAPE) {
            SetWindowTextW(m_edit, m_before.c_str());
        }
        const HWND header = GetParent(m_edit);
        SendMessageW(header, kFilterEntered, 0, 0);
        SetFocus(GetParent(header));
    }

    HWND m_edit;
    std::wstring m_before;
};

LRESULT CALLBACK editProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                               DWORD_PTR data)
{
    auto* edit = reinterpret_cast<FilterEdit*>(data);
    if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(window, editProcedure, id);
        const std::unique_ptr<FilterEdit> end(edit);
        return DefSubclassProc(window, message, wParam, lParam);
    }
    return edit->handle(message, wParam, lParam);
}

} // namespace

HWND newFilterEdit(HWND header)
{
    const HWND edit = CreateWindowExW(0, WC_EDITW, L"", WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL, 0,
                                      0, 0, 0, header, nullptr, nullptr, nullptr);
    auto keys = std::make_unique<FilterEdit>(edit);
    if (SetWindowSubclass(edit, editProcedure, kEditSubclass, reinterpret_cast<DWORD_PTR>(keys.get()))) {
        keys.release()->begin(); // the edit's own, until it is destroyed
    }
    SendMessageW(edit, WM_SETFONT, static_cast<WPARAM>(SendMessageW(header, WM_GETFONT, 0, 0)), FALSE);
    SendMessageW(edit, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(kEditMargin, kEditMargin));
    return edit;
}

} // namespace host
