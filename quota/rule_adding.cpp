#include "quota/rule_adding.h"

#include "frame/list_ctrl.h"
#include "frame/message_box.h"
#include "frame/narrow_handle.h"
#include "frame/redraw_off.h"
#include "frame/wait_cursor.h"
#include "quota/limits.h"
#include "quota/row_chain.h"
#include "quota/rule.h"
#include "quota/rule_chain.h"
#include "quota/rule_list.h"
#include "quota/rule_row.h"
#include "quota/settings_result.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <malloc.h>

#include <span>
#include <utility>

namespace {

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

} // namespace

Adding::Adding(const CListCtrl& list, const void* sid)
    : m_list(list)
    , m_sid(sid)
    , m_chain(rule_list::chain(list))
{
}

void Adding::add(wchar_t* path, bool amongSeveral)
{
    if (refusedAsUsed(path)) {
        return;
    }
    QuotaRule* const rule = makeRule(path);
    if (rule == nullptr) {
        return;
    }
    if (amongSeveral) {
        startAmongSeveral(*rule);
    }
    debug(rule);
    const int madeIn = insertRuleRow(m_list, 0, *rule, accountName(rule->sid).text);
    // QUIRK: not computed. Until the dialog is closed the limits of a single rule are -1, and shown as that.
    // ListAddTest.ShowsAProvisionalRowWhileTheDialogIsOpen
    m_list.setText(madeIn, rule_column::kPercent, L"00%");
    const int rows = m_list.rowCount();

    QuotaRule* const result = runSettings(m_list.topChild(), rule, 1);
    debug(result);
    // A host may fill or sort the list while the dialog is open.
    const int row = m_list.rowOf(NarrowHandle::of(rule).carrier(), madeIn);
    if (result != nullptr) {
        accept(row, result, row != madeIn || m_list.rowCount() != rows);
    } else {
        cancel(row);
    }
}

/// Whether a rule in the chain already speaks for this account and folder; says so once for each that does.
bool Adding::refusedAsUsed(wchar_t* path) const
{
    bool refused = false;
    for (QuotaRule* existing = m_chain; existing != nullptr; existing = existing->next) {
        if (conflicts(m_sid, path, *existing)) {
            showMessage(
                m_list.topChild(),
                "Limit you've specified is already used. Please change user/group or specify other folder.",
                captions::kInformation);
            refused = true;
        }
    }
    return refused;
}

/// Makes the record of a new rule; says so when memory is short. @return null then.
QuotaRule* Adding::makeRule(const wchar_t* path) const
{
    CBlock<QuotaRule> memory = ruleMemory();
    // Panels run for days: what the heap no longer needs goes back to the system while a person waits anyway.
    if (memory && _heapchk() == _HEAPOK) {
        _heapmin();
    }
    QuotaRule* rule = newRule(std::move(memory), path, m_sid);
    if (rule == nullptr) {
        showMessage(m_list.topChild(),
                    "Not enough resources. Please try to re-run Vantrel Control Panel, and close unnecessary "
                    "programs.",
                    captions::kInformation);
    }
    return rule;
}

/// Shows the record handed back by the dialog in the row made for it, and adds a row for each member record chained
/// after it.
/// @param row        -1 when the host took the row away meanwhile, and with it the rule.
/// @param rowsMoved  whether the rows are not as they were when the dialog opened.
void Adding::accept(int row, QuotaRule* accepted, bool rowsMoved)
{
    std::vector<QuotaRule*> rules;
    if (row >= 0) {
        for (QuotaRule* rule = accepted; rule != nullptr; rule = rule->next) {
            rules.push_back(rule);
        }
        showNumbers(m_list, row, *accepted);
        m_list.setData(row, NarrowHandle::inRow(m_list.handle(), accepted).carrier());
        if (rules.size() > 1) {
            withRedrawOff(m_list, [&] { showMembers(rules); });
        }
    }
    if (!m_accepted) {
        m_sinceCancel.insert(rules.begin(), rules.end());
    }
    m_chain = rowsMoved || sortsByItself(m_list) ? linkByRows() : linkOnTop(rules, m_chain);
}

void Adding::showMembers(const std::vector<QuotaRule*>& rules) const
{
    for (const QuotaRule* member : std::span(rules).subspan(1)) {
        const int row = insertRuleRow(m_list, 0, *member, accountName(member->sid).text);
        showPercent(m_list, row, *member);
    }
}

// QUIRK: after a Cancel the later folders of the batch are checked against no rule and start a chain of their own. The
// next request for the chain links all rows again. ListAddTest.CancelInABatchStartsANewChain
void Adding::cancel(int row)
{
    if (row >= 0) {
        m_list.deleteRow(row);
    }
    m_chain = nullptr;
    m_sinceCancel.clear();
    m_accepted = false;
}

QuotaRule* Adding::linkByRows() const
{
    if (m_accepted) {
        return relinkRows(m_list);
    }
    ChainBuilder chain;
    const int rows = m_list.rowCount();
    for (int row = 0; row < rows; ++row) {
        QuotaRule* const rule = ruleOfRow(m_list, row);
        if (m_sinceCancel.contains(rule)) {
            chain.append(rule);
        }
    }
    return chain.first();
}
