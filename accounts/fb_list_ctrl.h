// The list control with a filter bar in its header.
#pragma once

#include "frame/list_ctrl.h"

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

    /// A row that is out of the list.
    struct SavedRow {
        int image = 0;
        LPARAM data = 0;
        UINT state = 0;     ///< LVIS_...: only for a row that goes back at once
        std::wstring texts; ///< those of all columns, each with its terminator
        const wchar_t* text(int column) const;
    };
    /// In the order in which they were hidden.
    std::vector<SavedRow>& hiddenRows() { return m_hidden; }

private:
    std::wstring filterInHeader(int column) const;
    void readFilters();
    bool rejects(int row, const wchar_t* firstText) const;
    bool rejects(const SavedRow& row) const;
    class RowReader;
    /// Puts a row at the end of the list. @return false when the list refuses it.
    bool putBack(const SavedRow& row) const;
    void remove(const std::vector<int>& rows);
    void rebuildWithout(const std::vector<int>& rows);

    std::vector<std::wstring> m_filters;
    std::vector<SavedRow> m_hidden;
};
