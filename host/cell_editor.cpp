#include "host/cell_editor.h"

#include "host/limit_text.h"
#include "host/message.h"
#include "host/rule_page.h"

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
    : dialog_(dialog)
    , listId_(listId)
    , page_(page)
    , whenDone_(whenDone)
{
}

CellEditor::~CellEditor()
{
    close();
}

int CellEditor::notify(UINT code, wchar_t* text)
{
    NMLVDISPINFOW notification{};
    notification.hdr.hwndFrom = page_.list();
    notification.hdr.idFrom = static_cast<UINT_PTR>(listId_);
    notification.hdr.code = code;
    notification.item.iItem = row_;
    notification.item.iSubItem = kColumn;
    notification.item.pszText = text;
    return hookNotify(dialog_, listId_, &notification.hdr);
}

void CellEditor::open(int row)
{
    if (isOpen() || row < 0) {
        return;
    }
    row_ = row;
    if (notify(LVN_BEGINLABELEDITW, nullptr) != 0) {
        return;
    }
    const HWND list = page_.list();
    ListView_EnsureVisible(list, row, FALSE);
    RECT cell{};
    ListView_GetSubItemRect(list, row, kColumn, LVIR_LABEL, &cell);
    before_ = cellText(list, row);
    edit_ = CreateWindowExW(0, WC_EDITW, before_.c_str(),
                            WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL | ES_RIGHT, cell.left,
                            cell.top - 1, cell.right - cell.left, cell.bottom - cell.top + 2, list, nullptr,
                            reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(dialog_, GWLP_HINSTANCE)), nullptr);
    if (edit_ == nullptr) {
        return;
    }
    SetWindowSubclass(edit_, keys, 0, reinterpret_cast<DWORD_PTR>(this));
    SendMessageW(edit_, WM_SETFONT, static_cast<WPARAM>(SendMessageW(list, WM_GETFONT, 0, 0)), TRUE);
    SendMessageW(edit_, EM_SETLIMITTEXT, kLongestText, 0);
    SendMessageW(edit_, EM_SETSEL, 0, -1);
    SetFocus(edit_);
}

bool CellEditor::finish()
{
    if (!isOpen()) {
        return true;
    }
    if (explaining_) {
        return false;
    }
    const std::wstring typed = textOf(edit_);
    if (typed == before_) {
        // Untouched. Taking it would also set the hard limit, which nobody asked for.
        cancel();
        return true;
    }
    CellLimit limit = checkCellLimit(typed);
    if (!limit.problem.empty()) {
        explaining_ = true; // the box takes the focus from the edit, which asks to finish once more
        say(dialog_, MB_ICONWARNING, L"Soft Quota Limit", limit.problem);
        explaining_ = false;
        SetFocus(edit_);
        SendMessageW(edit_, EM_SETSEL, 0, -1);
        return false;
    }
    close();
    if (notify(LVN_ENDLABELEDITW, limit.text.data()) != 0) {
        page_.showNumbers(row_);
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
    if (const HWND edit = edit_) {
        edit_ = nullptr; // first: destroying it takes the focus away, which must not count as leaving it
        const bool hadFocus = GetFocus() == edit;
        DestroyWindow(edit);
        if (hadFocus) {
            SetFocus(page_.list());
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
            PostMessageW(editor.dialog_, editor.whenDone_, 0, 0);
            return 0;
        }
        if (wParam == VK_RETURN || wParam == VK_TAB) {
            PostMessageW(editor.dialog_, editor.whenDone_, 0, 0);
            return 0;
        }
        break;
    case WM_CHAR:
        if (wParam == VK_RETURN || wParam == VK_TAB || wParam == VK_ESCAPE) {
            return 0; // dealt with as key; as character it would only beep
        }
        break;
    case WM_KILLFOCUS:
        if (editor.edit_ == edit) {
            PostMessageW(editor.dialog_, editor.whenDone_, 0, 0);
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
