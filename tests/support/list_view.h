// A list view, read and worked as a person does.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

class ListView {
public:
    explicit ListView(HWND list)
        : m_list(list)
    {
    }
    ListView(HWND dialog, int id)
        : m_list(GetDlgItem(dialog, id))
    {
    }

    HWND list() const { return m_list; }
    operator HWND() const { return m_list; }
    HWND header() const { return ListView_GetHeader(m_list); }

    int rowCount() const { return ListView_GetItemCount(m_list); }
    std::wstring cell(int row, int column) const;
    std::string text(int row, int column) const;

    /// The cells of a row, of all columns, or of as many as given: "Anyone|100K|95K|0 |00%|C:\a".
    std::string row(int row, int columns = 0) const;
    std::vector<std::string> rows(int columns = 0) const;

    /// The cells of one column, from top to bottom.
    std::vector<std::string> column(int column) const;

    /// Each column's heading, width and, where it is not the left one, side: "Scripts 300", "How often 80 right".
    std::vector<std::string> columns() const;

    /// The row with this text in its first column; fails the test when there is none.
    int rowOf(const std::string& text) const;

    LPARAM data(int row) const;
    std::vector<LPARAM> allData() const;
    int image(int row) const;

    /// The first selected row, and the one with the focus; -1 when there is none.
    int selected() const { return ListView_GetNextItem(m_list, -1, LVNI_SELECTED); }
    int focused() const { return ListView_GetNextItem(m_list, -1, LVNI_FOCUSED); }
    unsigned selectedCount() const { return ListView_GetSelectedCount(m_list); }

    void select(int row, bool selected = true) const;
    void selectOnly(const std::vector<int>& rows) const;
    void focus(int row) const { ListView_SetItemState(m_list, row, LVIS_FOCUSED, LVIS_FOCUSED); }

    void setCell(int row, int column, const wchar_t* text) const;

    /// A row of the test's own, at the bottom, its item data as given.
    void addRow(LPARAM data, const std::vector<std::wstring>& cells) const;

    /// Tells the dialog of a double click on the selected row, and waits until a dialog that it opens is closed.
    void doubleClick() const;
    void clickColumn(int column) const;

private:
    LVITEMW item(UINT mask, int row) const;
    void notify(NMHDR& notification, UINT code) const;

    HWND m_list;
};
