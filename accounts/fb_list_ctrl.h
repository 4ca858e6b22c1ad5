// The list control with a filter bar ("FB") in its header.
#pragma once

#include "accounts/saved_rows.h"
#include "accounts/taken_window.h"
#include "frame/list_ctrl.h"

#include <initializer_list>
#include <string>
#include <vector>

/// A report list whose header takes a filter text for each column. Rows that a filter rejects leave the list and
/// are kept until they pass again.
class CFBListCtrl : public CListCtrl {
public:
    using CListCtrl::CListCtrl;

    /// Gives the header its filter bar, and each column a filter for texts.
    void addFilterBar() const;

    /// Reads the filters from the header, takes out the rows that they reject, and puts back the hidden rows that
    /// pass now, at the end, in the order in which they were hidden.
    /// @return whether a row came back.
    bool filterRows();

    /// A click on the button of a column's filter: takes the filter off, or starts to type one where there is none.
    /// @return the answer to the header: whether the filter has changed.
    bool onFilterButton(int column) const;

    /// The filter of a column as last read; empty when there is none.
    const wchar_t* filter(int column) const;

    /// @param texts  of the columns.
    /// @return the row's index, -1 when the list refuses it.
    int insertWholeRow(int index, int image, std::initializer_list<const wchar_t*> texts, LPARAM data) const;

    /// @return the first row from a start on whose cell is exactly the text, or -1.
    int findRowByText(int startRow, const wchar_t* text, int column) const;

    /// In the order in which they were hidden.
    SavedRows& hiddenRows() { return m_hidden; }

    /// While it lives, the list's rows are read and inserted by the control's own procedure, without the way through
    /// the window's: of many rows it costs as much as the rest. Where somebody else gets the messages first, he does.
    class Straight {
    public:
        explicit Straight(const CFBListCtrl& list)
            : m_list(list)
        {
            list.m_straight = list.m_window.straight();
        }
        Straight(const Straight&) = delete;
        Straight& operator=(const Straight&) = delete;
        ~Straight() { m_list.m_straight = nullptr; }

    private:
        const CFBListCtrl& m_list;
    };

protected:
    TakenWindow& takenWindow() { return m_window; }

private:
    LRESULT call(UINT message, WPARAM wParam, LPARAM lParam) const;
    void setCell(int row, int column, const wchar_t* text) const;
    std::wstring filterInHeader(int column) const;
    void readFilters();
    bool rejects(int row, const wchar_t* firstText) const;
    /// @param texts  of all columns, each with its terminator.
    bool rejects(const wchar_t* texts) const;
    class RowReader;
    /// Puts a row at the end of the list. @return false when the list refuses it.
    bool putBack(const SavedRow& row, const wchar_t* texts) const;
    void remove(const std::vector<int>& rows);
    void rebuildWithout(const std::vector<int>& rows);

    std::vector<std::wstring> m_filters;
    SavedRows m_hidden;
    TakenWindow m_window;
    mutable WNDPROC m_straight =
        nullptr; ///< see Straight; after a fault in its time of no use until the next
};
