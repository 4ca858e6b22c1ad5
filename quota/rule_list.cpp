#include "quota/rule_list.h"

#include "frame/c_memory.h"
#include "frame/list_ctrl.h"
#include "frame/message_box.h"
#include "frame/narrow_handle.h"
#include "frame/redraw_off.h"
#include "frame/wait_cursor.h"
#include "quota/limits.h"
#include "quota/rule.h"
#include "quota/rule_chain.h"
#include "quota/rule_index.h"
#include "quota/rule_row.h"
#include "quota/settings_dialog.h"
#include "store/lornix.h"

#include <malloc.h>

#include <span>
#include <utility>
#include <vector>

namespace {

/// The folders of a list; none for null.
std::span<wchar_t* const> foldersOf(const PathList* paths)
{
    if (paths == nullptr || paths->count < 0) {
        return {};
    }
    return {paths->paths, static_cast<std::size_t>(paths->count)};
}

/// Links the records of all rows in row order. @return the first, null for an empty list.
QuotaRule* relinkRows(const CListCtrl& list)
{
    ChainBuilder chain;
    const int rows = list.rowCount();
    for (int row = 0; row < rows; ++row) {
        chain.append(ruleOfRow(list, row));
    }
    return chain.first();
}

bool sortsByItself(const CListCtrl& list)
{
    return (GetWindowLongPtrW(list.handle(), GWL_STYLE) & (LVS_SORTASCENDING | LVS_SORTDESCENDING)) != 0;
}

/// Whether a rule in the chain already speaks for this account and folder; says so once for each that does.
bool refusedAsUsed(const CListCtrl& list, QuotaRule* chain, const void* sid, wchar_t* path)
{
    bool refused = false;
    for (QuotaRule* existing = chain; existing != nullptr; existing = existing->next) {
        if (conflicts(sid, path, *existing)) {
            showMessage(
                list.topChild(),
                "Limit you've specified is already used. Please change user/group or specify other folder.",
                captions::kInformation);
            refused = true;
        }
    }
    return refused;
}

/// Makes the record of a new rule; says so when memory is short. @return null then.
QuotaRule* makeRule(const CListCtrl& list, const wchar_t* path, const void* sid)
{
    CBlock<QuotaRule> memory = ruleMemory();
    // Panels run for days: what the heap no longer needs goes back to the system while a person waits anyway.
    if (memory && _heapchk() == _HEAPOK) {
        _heapmin();
    }
    QuotaRule* rule = newRule(std::move(memory), path, sid);
    if (rule == nullptr) {
        showMessage(list.topChild(),
                    "Not enough resources. Please try to re-run Vantrel Control Panel, and close unnecessary "
                    "programs.",
                    captions::kInformation);
    }
    return rule;
}

/// Limits and use of a rule that is one of several made at once; for a single one the dialog finds them.
void startAmongSeveral(QuotaRule& rule)
{
    const Limits limits = limitsForSeveralFolders();
    rule.hardLimit = limits.hard;
    rule.softLimit = limits.soft;
    rule.inUse = 0;
    if (rule.sid == nullptr) {
        const WaitCursor measuring;
        rule.inUse = getRealSize(rule.path);
    }
}

/// Shows the dialog on a record. @return the record handed back, null when cancelled or not shown.
QuotaRule* runDialog(HWND owner, QuotaRule* rule, int mode)
{
    const INT_PTR code = editQuotaListEntry(owner, rule, mode);
    return code == 0 || code == -1 ? nullptr : NarrowHandle::fromCarrier(code).as<QuotaRule>();
}

/// Shows the record handed back by the dialog in the row made for it, adds a row for each member record
/// chained after it, and links all of them, in row order, in front of `rest`.
/// @return the first record.
QuotaRule* acceptRule(const CListCtrl& list, int row, QuotaRule* accepted, QuotaRule* rest)
{
    std::vector<QuotaRule*> rules{accepted};
    for (QuotaRule* member = accepted->next; member != nullptr; member = member->next) {
        rules.push_back(member);
    }
    showNumbers(list, row, *accepted);
    list.setData(row, NarrowHandle::of(accepted).carrier());
    for (std::size_t i = 1; i < rules.size(); ++i) {
        const int memberRow = insertRuleRow(list, *rules[i], accountName(rules[i]->sid).text);
        showPercent(list, memberRow, *rules[i]);
    }
    return linkOnTop(rules, rest);
}

/// The window that owns a dialog on a selected row: the list's header. A list without a child window faults
/// here, and is meant to: hosts rely on being stopped before a dialog opens that nothing owns.
HWND ownerForEditing(const CListCtrl& list)
{
    HWND top = list.topChild();
    if (top == nullptr) {
        const CWnd* const volatile missing = nullptr;
        return *reinterpret_cast<const HWND volatile*>(reinterpret_cast<UINT_PTR>(missing) +
                                                       CWndLayout::kHandleOffset);
    }
    return top;
}

/// One fill of a list: goes through the rules of all folders, in order, and stops at each that is not shown yet.
class Filling {
public:
    Filling(const CListCtrl& list, const PathList* paths)
        : m_list(list)
        , m_folders(foldersOf(paths))
    {
        const int rows = list.rowCount();
        m_rows.reserve(static_cast<std::size_t>(rows));
        for (int row = rows - 1; row >= 0; --row) {
            if (QuotaRule* rule = ruleOfRow(list, row)) {
                m_rows.push_back(rule);
                m_shown.addOnTop(*rule);
            }
        }
    }

    /// @return the next rule, which is to be shown on top of the others; null at the end.
    QuotaRule* nextNew()
    {
        for (;;) {
            while (m_rule != nullptr) {
                QuotaRule* rule = std::exchange(m_rule, m_rule->next);
                // Noted at once: after a row went in, little of this is left in the processor's cache.
                if (m_shown.addIfNew(*rule)) {
                    m_rows.push_back(rule);
                    return rule;
                }
            }
            if (m_inFolder) {
                finishFolder();
            }
            if (m_folders.empty()) {
                return nullptr;
            }
            m_rule = getQuotaList(m_folders.front());
            m_inFolder = m_rule != nullptr;
            m_folders = m_folders.subspan(1);
        }
    }

    void show(const QuotaRule& rule) const
    {
        const int row = insertRuleRow(m_list, rule, accountNameOrSid(rule.sid).text);
        showPercent(m_list, row, rule);
    }

private:
    // The rows are known, unless the list has an order of its own: those not linked yet stand on top.
    void finishFolder()
    {
        m_inFolder = false;
        if (sortsByItself(m_list)) {
            relinkRows(m_list);
        } else {
            m_first = linkOnTop(std::span(m_rows).subspan(m_linked), m_first);
            m_linked = m_rows.size();
        }
        EnableWindow(m_list.handle(), TRUE);
    }

    const CListCtrl& m_list;
    std::span<wchar_t* const> m_folders; ///< those still to come
    QuotaRule* m_rule = nullptr;         ///< the next one of the present folder
    bool m_inFolder = false;
    RuleIndex m_shown;
    std::vector<QuotaRule*> m_rows; ///< the records of all rows, the lowest first
    std::size_t m_linked = 0;       ///< how many of them, from the lowest, form the chain
    QuotaRule* m_first = nullptr;   ///< first record of that chain
};

} // namespace

namespace rule_list {

void initialize(const CListCtrl& list, const PathList* paths)
{
    list.deleteAllRows();
    for (int columns = list.columnCount(); columns > 0; --columns) {
        list.deleteColumn(0);
    }
    for (int index = 0; const ListColumn& column : kRuleColumns) {
        list.insertColumn(index++, column);
    }
    list.addExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP | LVS_EX_LABELTIP);
    fill(list, paths);
}

void fill(const CListCtrl& list, const PathList* paths)
{
    Filling filling(list, paths);
    // A list that shows everything already is not repainted.
    if (QuotaRule* rule = filling.nextNew()) {
        withRedrawOff(list, [&] {
            for (; rule != nullptr; rule = filling.nextNew()) {
                filling.show(*rule);
            }
        });
    }
}

bool add(const CListCtrl& list, const void* sid, const PathList* paths)
{
    if (paths == nullptr) {
        return true;
    }
    bool accepted = true;
    QuotaRule* head = chain(list);
    for (wchar_t* path : foldersOf(paths)) {
        if (refusedAsUsed(list, head, sid, path)) {
            continue;
        }
        QuotaRule* rule = makeRule(list, path, sid);
        if (rule == nullptr) {
            continue;
        }
        if (paths->count != 1) {
            startAmongSeveral(*rule);
        }
        debug(rule);
        const int row = insertRuleRow(list, *rule, accountName(rule->sid).text);
        list.setText(row, rule_column::kPercent, L"00%"); // not computed: the limits may still be unknown
        QuotaRule* const rest = head;

        QuotaRule* result = runDialog(list.topChild(), rule, 1);
        debug(result);
        if (result != nullptr) {
            head = acceptRule(list, row, result, rest);
        } else {
            list.deleteRow(row);
            // Kept: after a Cancel the later folders of the batch are checked against no rule and start a
            // chain of their own. The next request for the chain links all rows again.
            head = nullptr;
            accepted = false;
        }
    }
    debug(head);
    return accepted;
}

bool editSelected(const CListCtrl& list)
{
    if (list.rowCount() == 0) {
        return false;
    }
    const int row = list.nextSelected();
    QuotaRule* rule = row < 0 ? nullptr : ruleOfRow(list, row);
    if (rule == nullptr) {
        return true;
    }
    rule = runDialog(ownerForEditing(list), rule, 0);
    if (rule == nullptr) {
        return false;
    }
    showNumbers(list, row, *rule);
    debug(rule);
    return true;
}

bool dropSelected(const CListCtrl& list)
{
    std::vector<int> selected;
    for (int row = list.nextSelected(); row >= 0; row = list.nextSelected(row)) {
        selected.push_back(row);
    }
    if (selected.empty()) {
        return false;
    }
    withRedrawOff(list, [&] {
        for (int deleted = 0; const int row : selected) {
            const int present = row - deleted++;
            if (const QuotaRule* rule = ruleOfRow(list, present)) {
                unlinkRule(*rule);
            }
            list.deleteRow(present);
        }
    });
    return true;
}

QuotaRule* chain(const CListCtrl& list)
{
    if (list.rowCount() == 0) {
        return nullptr;
    }
    QuotaRule* first = relinkRows(list);
    debug(first);
    return first;
}

} // namespace rule_list
