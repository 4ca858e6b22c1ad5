// A window with a quota list, as a host has it.
#pragma once

#include "corvane.h"
#include "tests/support/list_view.h"

#include <string>
#include <vector>

/// A hidden top-level window with a list view in report view.
class ListHost : public ListView {
public:
    static constexpr int kListId = 1009;

    explicit ListHost(DWORD moreListStyles = 0);
    ~ListHost();
    ListHost(const ListHost&) = delete;
    ListHost& operator=(const ListHost&) = delete;

    HWND window() const { return m_window; }
    /// The list-control object of the exports that end in 2.
    CListCtrl* object() { return reinterpret_cast<CListCtrl*>(&m_object); }

    /// The record of a row, which must lie below 4 GiB: only then is the item data its address.
    QuotaRule* record(int row) const { return reinterpret_cast<QuotaRule*>(data(row)); }

    /// Adds a push button, or a control of another class, to the window.
    HWND addControl(int id, const wchar_t* controlClass = L"BUTTON", DWORD style = 0);

private:
    HWND m_window;
    CorvaneListObject m_object{};
};

/// The accounts and folders of a chain in its order, and whether its links back fit: "Anyone C:\a". What does
/// not fit is said in the text.
std::vector<std::string> chainTexts(const QuotaRule* first);
