#include "host/cell_editor.h"

#include "host/limit_text.h"
#include "host/rule_page.h"
#include "host/window/message.h"

#include "corvane.h"

#include <commctrl.h>

namespace host {
namespace {

constexpr int kColumn = RulePage::kSoftLimitColumn;
constexpr UINT kLongestText = 32;

std::wstring textOf(HWND edit)
{
    wchar_t text[kLongestText + 1] = L"";
    GetWindowTextW(edit, text, static_cast<int>(std::size(text)));
    return text;
}

std::wstring cellText(HWND list, int row)
{
    wchar_t text[kLongestText + 1] = L"";
    ListView_GetItemText(list, row, kColumn, text, static_cast<int>(std::size(text)));
    std::wstring cell = text;
    cell.erase(cell.find_last_not_of(L' ') + 1); // the blank that stands for bytes
    return cell;
}

} // namespace

CellEditor::CellEditor(HWND dialog, int listId, RulePage& page, UINT whenDone)
    : m_dialog(dialog)
    , m_listId(listId)
    , m_page(page)
    , m_whenDone(whenDone)
{
}

CellEditor::~CellEditor()
{
    close();
}

int CellEditor::notify(UINT code, wchar_t* text)
{
    NMLVDISPINFOW notification{};
    notification.hdr.hwndFrom = m_page.list();
    notification.hdr.idFrom = static_cast<UINT_PTR>(m_listId);
    notification.hdr.code = code;
    notification.item.iItem = m_row;
    notification.item.iSubItem = kColumn;
    notification.item.pszText = text;
    return hookNotify(m_dialog, m_listId, &notification.hdr);
}

void CellEditor::open(int row)
{
    if (isOpen() || row < 0) {
        return;
    }
    m_row = row;
    if (notify(LVN_BEGINLABELEDITW, nullptr) != 0) {
        return;
    }
    const HWND list = m_page.list();
    ListView_EnsureVisible(list, row, FALSE);
    RECT cell{};
    ListView_GetSubItemRect(list, row, kColumn, LVIR_LABEL, &cell);
    m_before = cellText(list, row);
    m_edit = CreateWindowExW(
        0, WC_EDITW, m_before.c_str(), WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL | ES_RIGHT,
        cell.left, cell.top - 1, cell.right - cell.left, cell.bottom - cell.top + 2, list, nullptr,
        reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(m_dialog, GWLP_HINSTANCE)), nullptr);
    if (m_edit == nullptr) {
        return;
    }
    SetWindowSubclass(m_edit, keys, 0, reinterpret_cast<DWORD_PTR>(this));
    SendMessageW(m_edit, WM_SETFONT, static_cast<WPARAM>(SendMessageW(list, WM_GETFONT, 0, 0)), TRUE);
    SendMessageW(m_edit, EM_SETLIMITTEXT, kLongestText, 0);
    SendMessageW(m_edit, EM_SETSEL, 0, -1);
    SetFocus(m_edit);
}

bool CellEditor::finish()
{
    if (!isOpen()) {
        return true;
    }
    if (m_explaining) {
        return false;
    }
    const std::wstring typed = textOf(m_edit);
    if (typed == m_before) {
        // Untouched. Taking it would also set the hard limit, which nobody asked for.
        cancel();
        return true;
    }
    CellLimit limit = checkCellLimit(typed);
    if (!limit.problem.empty()) {
        m_explaining = true; // the box takes the focus from the edit, which asks to finish once more
        say(m_dialog, MB_ICONWARNING, L"Soft Quota Limit", limit.problem);
        m_explaining = false;
        SetFocus(m_edit);
        SendMessageW(m_edit, EM_SETSEL, 0, -1);
        return false;
    }
    close();
    if (m_page.changing(m_row, [&](QuotaRule&) { return notify(LVN_ENDLABELEDITW, limit.text.data()) != 0; }))
    {
        m_page.showNumbers(m_row);
    }
    return true;
}

void CellEditor::cancel()
{
    if (isOpen()) {
        close();
        notify(LVN_ENDLABELEDITW, nullptr);
    }
}

void CellEditor::close()
{
    if (const HWND edit = m_edit) {
        m_edit = nullptr; // first: destroying it takes the focus away, which must not count as leaving it
        const bool hadFocus = GetFocus() == edit;
        DestroyWindow(edit);
        if (hadFocus) {
            SetFocus(m_page.list());
        }
    }
}

LRESULT CALLBACK CellEditor::keys(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                  DWORD_PTR self)
{
    auto& editor = *reinterpret_cast<CellEditor*>(self);
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTALLKEYS; // Enter, Esc and Tab belong to the edit, not to the window around it
    case WM_KEYDOWN:
        if (wParam == VK_ESCAPE) {
            editor.cancel();
            PostMessageW(editor.m_dialog, editor.m_whenDone, 0, 0);
            return 0;
        }
        if (wParam == VK_RETURN || wParam == VK_TAB) {
            PostMessageW(editor.m_dialog, editor.m_whenDone, 0, 0);
            return 0;
        }
        break;
    case WM_CHAR:
        if (wParam == VK_RETURN || wParam == VK_TAB || wParam == VK_ESCAPE) {
            return 0; // dealt with as key; as character it would only beep
        }
        break;
    case WM_KILLFOCUS:
        if (editor.m_edit == edit) {
            PostMessageW(editor.m_dialog, editor.m_whenDone, 0, 0);
        }
        break;
    case WM_NCDESTROY:
        RemoveWindowSubclass(edit, keys, id);
        break;
    default:
        break;
    }
    return DefSubclassProc(edit, message, wParam, lParam);
}

} // namespace host
