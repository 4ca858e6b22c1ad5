// The list view of a dialog, read and worked as a person does.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

class ListInDialog {
public:
    ListInDialog(HWND dialog, int id)
        : m_dialog(dialog)
        , m_list(GetDlgItem(dialog, id))
    {
    }

    HWND window() const { return m_list; }
    int rowCount() const { return ListView_GetItemCount(m_list); }
    std::wstring cell(int row, int column) const;

    /// The cells of each row, from top to bottom: "C:\a.exe|Anyone|1day(s)".
    std::vector<std::string> rows() const;

    LPARAM data(int row) const;
    std::vector<LPARAM> allData() const;

    void select(int row, bool selected = true) const;

    /// Selects this row and no other.
    void selectOnly(int row) const;

    /// Tells the dialog of a double click, and waits until a dialog that it opens is closed.
    void doubleClick() const;

    void clickColumn(int column) const;

private:
    void notify(NMHDR& notification, UINT code) const;

    HWND m_dialog;
    HWND m_list;
};
