// Editing the soft limit in its cell. The platform's own label editing knows the first column only, so the
// edit is the host's, and the library hears of it as of any label editing: through hookNotify.
#pragma once

#include <windows.h>

#include <string>

namespace host {

class RulePage;

class CellEditor {
public:
    /// @param whenDone  message posted to `dialog` when the person is done with the edit: finish() is due then.
    CellEditor(HWND dialog, int listId, RulePage& page, UINT whenDone);
    ~CellEditor();
    CellEditor(const CellEditor&) = delete;
    CellEditor& operator=(const CellEditor&) = delete;

    bool isOpen() const { return m_edit != nullptr; }

    /// Opens an edit over the row's cell, if the library allows it.
    void open(int row);

    /// Takes what was typed. A text that is no limit is explained, and the edit stays open.
    /// @return true when no edit is open any more.
    bool finish();

    /// Gives up what was typed.
    void cancel();

private:
    int notify(UINT code, wchar_t* text);
    void close();
    static LRESULT CALLBACK keys(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                 DWORD_PTR self);

    HWND m_dialog;
    int m_listId;
    RulePage& m_page;
    UINT m_whenDone;
    HWND m_edit = nullptr;
    int m_row = -1;
    bool m_explaining = false; ///< a message about what was typed is on the screen
    std::wstring m_before;
};

} // namespace host
