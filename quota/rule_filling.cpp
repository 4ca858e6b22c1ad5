#include "quota/rule_filling.h"

#include "frame/list_ctrl.h"
#include "quota/row_chain.h"
#include "quota/rule_chain.h"
#include "quota/rule_row.h"
#include "store/lornix.h"

#include <utility>

std::span<wchar_t* const> foldersOf(const PathList* paths)
{
    if (paths == nullptr || paths->count < 0) {
        return {};
    }
    return {paths->paths, static_cast<std::size_t>(paths->count)};
}

Filling::Filling(const CListCtrl& list, const PathList* paths)
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

QuotaRule* Filling::nextNew()
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

void Filling::show(const QuotaRule& rule) const
{
    const int row = insertRuleRow(m_list, rule, accountNameOrSid(rule.sid).text);
    showPercent(m_list, row, rule);
}

// The rows are known, unless the list has an order of its own: those not linked yet stand on top.
void Filling::finishFolder()
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
