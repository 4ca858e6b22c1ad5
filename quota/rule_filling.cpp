#include "quota/rule_filling.h"

#include "frame/list_ctrl.h"
#include "quota/row_chain.h"
#include "quota/rule_chain.h"
#include "quota/rule_row.h"
#include "store/lornix.h"

#include <cwchar>
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
    , m_sorts(sortsByItself(list))
    , m_folders(foldersOf(paths))
{
    const int rows = list.rowCount();
    m_shown.reserve(static_cast<std::size_t>(rows));
    for (int row = rows - 1; row >= 0; --row) {
        if (QuotaRule* rule = ruleOfRow(list, row)) {
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

void Filling::show(const QuotaRule& rule)
{
    const AccountName name = accountNameOrSid(rule.sid);
    if (m_sorts) {
        showPercent(m_list, insertRuleRow(m_list, 0, rule, name.text), rule);
        return;
    }
    keep(rule, name.text);
    formatPercent(m_waiting.back().percent, rule.inUse, rule.hardLimit); // may fault: the row then has none
}

void Filling::keep(const QuotaRule& rule, const wchar_t* name)
{
    const std::size_t place = m_names.size();
    m_names.insert(m_names.end(), name, name + std::wcslen(name) + 1);
    m_waiting.push_back({&rule, place, {}});
}

// A row inserted on top moves all others. From the uppermost to the lowest, each moves only those that were there
// before the fill.
void Filling::showRows()
{
    const std::vector<Row> rows = std::exchange(m_waiting, {});
    int index = 0;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row, ++index) {
        const int shown = insertRuleRow(m_list, index, *row->rule, m_names.data() + row->name);
        if (row->percent[0] != L'\0') {
            m_list.setText(shown, rule_column::kPercent, row->percent);
        }
    }
    m_names.clear();
}

// The rows are known, unless the list has an order of its own: those not linked yet stand on top.
void Filling::finishFolder()
{
    m_inFolder = false;
    if (m_sorts) {
        relinkRows(m_list);
    } else {
        m_first = linkOnTop(m_shown.rules().subspan(m_linked), m_first);
        m_linked = m_shown.rules().size();
    }
    EnableWindow(m_list.handle(), TRUE);
}
