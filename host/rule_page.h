// The rule list: every step goes through an export of corvane, the host adds what the exports leave to it.
#pragma once

#include "host/list_calls.h"
#include "host/rule_state.h"

#include <windows.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace host {

class RulePage {
public:
    /// The column that can be edited in place.
    static constexpr int kSoftLimitColumn = 2;

    /// @param dialog  window that owns the list. @param listId  control id of a list view in report view.
    /// @param calls   the form of the list functions to use; outlives this object.
    RulePage(HWND dialog, int listId, const ListCalls& calls);
    ~RulePage();
    RulePage(const RulePage&) = delete;
    RulePage& operator=(const RulePage&) = delete;

    HWND list() const { return m_list; }

    /// Gives the last column the room that the others leave.
    void fitColumns();

    /// Adds the stored rules of folders to the list. @return what the store could not read; empty when it
    /// read all.
    std::wstring show(const std::vector<std::wstring>& folders);

    /// Takes all rows out of the list, saved or not, and releases the rules.
    void clear();

    /// Takes the rows of some folders out of the list, saved or not, and releases their rules.
    void hide(const std::vector<std::wstring>& folders);

    /// Adds a rule on each of some folders, through the library's dialog.
    /// @param sid  account, null or CORVANE_ANYONE for anyone.
    /// @return what the store could not do for the dialog; empty when it did all.
    std::wstring add(void* sid, const std::vector<std::wstring>& folders);

    /// Opens the library's dialog on the first selected row. @return as add().
    std::wstring edit();

    /// Opens it on a row, selected or not. @return as add().
    std::wstring editRow(int row);

    /// Takes the selected rows out of the list and releases their rules.
    void drop();

    /// Sorts by a column; once more turns the order round.
    void sort(int column);

    /// What became of storing.
    struct Stored {
        bool done;             ///< all is stored
        std::wstring problems; ///< why it is not, or what was met on the way; empty when nothing was
    };

    /// Stores the rules of the folders that were changed here, be it by adding a rule that was dropped again. The
    /// others are left to the store: what could not be read of them, or what somebody else has stored there
    /// meanwhile, is not overwritten.
    /// @param folders  all folders shown.
    Stored store(const std::vector<std::wstring>& folders);

    /// @return true when the rows differ from what was read or stored last, in any of all folders or in some.
    bool isModified() const;
    bool isModified(const std::vector<std::wstring>& folders) const;

    int count() const;

    /// Enables two buttons of the dialog while a row is selected, and disables them otherwise.
    void enableForSelection(int button, int otherButton) const;

    int selectedRow() const;
    void selectAll();

    /// The record behind a row.
    QuotaRule* ruleOf(int row) const;

    /// Writes the limits, the use and the percentage of a row anew from its record.
    void showNumbers(int row);

private:
    QuotaRule* chain() const;
    void setText(int row, int column, std::wstring text);
    void showBackslashes();
    std::wstring editing(int row, const std::function<bool(QuotaRule&)>& dialog);
    std::vector<QuotaRule*> selectedRules() const;

    HWND m_dialog;
    HWND m_list;
    const ListCalls& m_calls;
    CorvaneListObject m_object;
    ListName m_name;
    RuleState m_stored;
    std::set<std::wstring> m_announced; // by folderKey: adding made them known to the store, rules or not
};

} // namespace host
