// A window with a quota list, as a host has it.
#pragma once

#include "corvane.h"

#include <string>
#include <vector>

/// A hidden top-level window with a list view in report view.
class ListHost {
public:
    static constexpr int kListId = 1009;

    explicit ListHost(DWORD moreListStyles = 0);
    ~ListHost();
    ListHost(const ListHost&) = delete;
    ListHost& operator=(const ListHost&) = delete;

    HWND window() const { return m_window; }
    HWND list() const { return m_object.window; }
    HWND header() const;

    /// The list-control object of the exports that end in 2.
    CListCtrl* object() { return reinterpret_cast<CListCtrl*>(&m_object); }

    int rowCount() const;
    std::wstring cell(int row, int column) const;

    /// The cells of a row, of all columns, or of as many as given: "Anyone|100K|95K|0 |00%|C:\a".
    std::string row(int row, int columns = 0) const;
    std::vector<std::string> rows(int columns = 0) const;

    /// The cells of one column, from top to bottom.
    std::vector<std::string> column(int column) const;

    LPARAM data(int row) const;

    /// The record of a row, which must lie below 4 GiB: only then is the item data its address.
    QuotaRule* record(int row) const { return reinterpret_cast<QuotaRule*>(data(row)); }

    void setCell(int row, int column, const wchar_t* text);

    /// A row of the test's own, at the bottom, its item data as given.
    void addRow(LPARAM data, const std::vector<std::wstring>& cells);

    void select(int row, bool selected = true);
    void selectOnly(const std::vector<int>& rows);

    /// Adds a push button, or a control of another class, to the window.
    HWND addControl(int id, const wchar_t* controlClass = L"BUTTON", DWORD style = 0);

private:
    HWND m_window;
    CorvaneListObject m_object{};
};

/// The accounts and folders of a chain in its order, and whether its links back fit: "Anyone C:\a". What does
/// not fit is said in the text.
std::vector<std::string> chainTexts(const QuotaRule* first);
