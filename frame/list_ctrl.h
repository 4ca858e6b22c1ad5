// The list-control object: a thin wrapper of a report list view.
#pragma once

#include "frame/wnd.h"

#include <string>

/// A column of a report list view.
struct ListColumn {
    const wchar_t* heading;
    int format; ///< LVCFMT_...
    int width;  ///< pixels at 96 dots per inch
};

/// A report list view. Rows and columns are zero-based. Objects of a host have this type too: see CWnd.
class CListCtrl : public CWnd {
public:
    using CWnd::CWnd;

    int rowCount() const { return static_cast<int>(send(LVM_GETITEMCOUNT)); }
    HWND header() const { return reinterpret_cast<HWND>(send(LVM_GETHEADER)); }
    int columnCount() const;
    void insertColumn(int index, const ListColumn& column) const;
    void deleteColumn(int index) const { send(LVM_DELETECOLUMN, static_cast<WPARAM>(index)); }

    /// Adds extended styles to those that the control has.
    void addExtendedStyle(DWORD styles) const;

    /// @return the row's index, which differs from the wanted one in a list that sorts by itself; -1 on
    /// failure.
    int insertRow(int index, const wchar_t* text, LPARAM data) const;
    /// The same with an image of the list's image list.
    int insertRow(int index, int image, const wchar_t* text, LPARAM data) const;
    void deleteRow(int row) const { send(LVM_DELETEITEM, static_cast<WPARAM>(row)); }
    void deleteAllRows() const { send(LVM_DELETEALLITEMS); }

    void setText(int row, int column, const wchar_t* text) const;
    /// The whole text of a cell, however long.
    std::wstring text(int row, int column) const;

    /// The row's item data, 0 for a row that does not exist.
    LPARAM data(int row) const;
    void setData(int row, LPARAM data) const;

    /// The row that carries an item data, wherever it stands now; -1 when none does.
    /// @param expected  where it stood last.
    int rowOf(LPARAM data, int expected) const;

    /// Index of the row's image.
    int image(int row) const;

    /// Selects a row and no other, gives it the focus and brings it into view.
    void selectOnly(int row) const;

    /// @return the next selected row after `row` (-1: from the start), or -1.
    int nextSelected(int row = -1) const
    {
        return static_cast<int>(send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED));
    }

    void deselect(int row) const { setState(row, 0, LVIS_SELECTED); }

    int selectedCount() const { return static_cast<int>(send(LVM_GETSELECTEDCOUNT)); }

    /// The topmost child window, normally the header; null when the list has none, and without a list: of no
    /// window, the platform would give the topmost one of the desktop.
    HWND topChild() const { return handle() != nullptr ? GetTopWindow(handle()) : nullptr; }

private:
    void setState(int row, UINT state, UINT mask) const;
};

/// A list-control object for the time of one call: attached to a dialog's control, never destroying it.
class DialogList : public CListCtrl {
public:
    DialogList(HWND dialog, int id)
        : CListCtrl(GetDlgItem(dialog, id))
    {
    }
    ~DialogList() override { detach(); }
};
