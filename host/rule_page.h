// The rule list: every step goes through an export of corvane, the host adds what the exports leave to it.
#pragma once

#include "host/quota_list.h"
#include "host/rule_state.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

class RulePage {
public:
    /// The column that can be edited in place.
    static constexpr int kSoftLimitColumn = 2;

    /// @param dialog  window that owns the list. @param listId  control id of a list view in report view.
    RulePage(HWND dialog, int listId, std::unique_ptr<QuotaList> quotas);
    ~RulePage();
    RulePage(const RulePage&) = delete;
    RulePage& operator=(const RulePage&) = delete;

    HWND list() const { return m_list; }

    /// Gives the last column the room that the others leave.
    void fitColumns();

    /// Adds the stored rules of folders to the list.
    void show(const std::vector<std::wstring>& folders);

    /// Takes all rows out of the list, saved or not, and releases the rules.
    void clear();

    /// Takes the rows of some folders out of the list, saved or not, and releases their rules.
    void hide(const std::vector<std::wstring>& folders);

    /// Adds a rule on each of some folders, through the library's dialog.
    /// @param sid  account, null or CORVANE_ANYONE for anyone.
    void add(void* sid, const std::vector<std::wstring>& folders);

    /// Opens the library's dialog on the first selected row.
    void edit();

    /// Opens it on a row, selected or not.
    void editRow(int row);

    /// Takes the selected rows out of the list and releases their rules.
    void drop();

    /// Sorts by a column; once more turns the order round.
    void sort(int column);

    /// Stores the rules of the folders that were changed here, be it by adding a rule that was dropped again. The
    /// others are left to the store: what could not be read of them, or what somebody else has stored there
    /// meanwhile, is not overwritten.
    /// @param folders  all folders shown.
    /// @return true when all is stored.
    bool store(const std::vector<std::wstring>& folders);

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

    /// Changes the record behind a row. @param change  returns false when it did nothing after all.
    /// @return what `change` gave.
    bool changing(int row, const std::function<bool(QuotaRule&)>& change);

    /// Writes the limits, the use and the percentage of a row anew from its record.
    void showNumbers(int row);

private:
    QuotaRule* chain() const;
    LPARAM dataOf(int row) const;
    void knowRecords();
    void setText(int row, int column, std::wstring text);
    void showBackslashes();
    void editing(int row, const std::function<bool(QuotaRule&)>& dialog);
    std::vector<QuotaRule*> selectedRules() const;

    HWND m_dialog;
    HWND m_list;
    std::unique_ptr<QuotaList> m_quotas;
    std::unordered_map<LPARAM, QuotaRule*>
        m_records; // by the rows' item data; rows that went may still be there
    RuleChanges m_changes;
    std::set<std::wstring> m_announced; // by folderKey: adding made them known to the store, rules or not
};

} // namespace host
