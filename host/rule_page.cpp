#include "host/rule_page.h"

#include "host/folder_name.h"
#include "host/limit_text.h"
#include "host/path_block.h"
#include "host/window/paint_pause.h"

#include "corvane.h"
#include "lornix_host.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <unordered_map>

namespace host {
namespace {

// The library's columns that the host writes to.
constexpr int kHardLimit = 1;
constexpr int kSoftLimit = RulePage::kSoftLimitColumn;
constexpr int kInUse = 3;
constexpr int kPercent = 4;
constexpr int kFolder = 5;

/// Whether two records of one rule have the same numbers: its account and its folder stay.
bool sayTheSame(const QuotaRule& one, const QuotaRule& other)
{
    return one.hardLimit == other.hardLimit && one.softLimit == other.softLimit && one.inUse == other.inUse;
}

} // namespace

RulePage::RulePage(HWND dialog, int listId, std::unique_ptr<QuotaList> quotas)
    : m_dialog(dialog)
    , m_list(GetDlgItem(dialog, listId))
    , m_quotas(std::move(quotas))
{
    m_quotas->initialize(nullptr);

    // The library's widths are those of a narrow page. This window has room for the headings.
    constexpr int kWidths[] = {96, 52, 66, 52, 32}; // dialog units
    for (int column = 0; column < kFolder; ++column) {
        RECT unit{0, 0, kWidths[column], 0};
        MapDialogRect(m_dialog, &unit);
        ListView_SetColumnWidth(m_list, column, unit.right);
    }
}

RulePage::~RulePage()
{
    clear();
}

void RulePage::fitColumns()
{
    RECT area{};
    GetClientRect(m_list, &area);
    int room = area.right - GetSystemMetrics(SM_CXVSCROLL);
    for (int column = 0; column < kFolder; ++column) {
        room -= ListView_GetColumnWidth(m_list, column);
    }
    constexpr int kLeast = 100;
    ListView_SetColumnWidth(m_list, kFolder, std::max(room, kLeast));
}

QuotaRule* RulePage::chain() const
{
    return m_quotas->chain();
}

LPARAM RulePage::dataOf(int row) const
{
    LVITEMW item{};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    return ListView_GetItem(m_list, &item) != FALSE ? item.lParam : 0;
}

/// A row's item data is the record's address only while that lies below 4 GiB. The chain is in row order, and tells which is
/// whose: once after rows came in, as all of them must be looked at.
void RulePage::knowRecords()
{
    m_records.clear();
    int row = 0;
    for (QuotaRule* rule = chain(); rule != nullptr; rule = rule->next, ++row) {
        m_records.emplace(dataOf(row), rule);
    }
}

QuotaRule* RulePage::ruleOf(int row) const
{
    const auto found = m_records.find(dataOf(row));
    return found != m_records.end() ? found->second : nullptr;
}

void RulePage::show(const std::vector<std::wstring>& folders)
{
    PathBlock paths(folders);
    {
        const PaintPause pause(m_list);
        m_quotas->fill(paths.list()); // all at once: each call looks at all rows that are there already
    }
    knowRecords();
}

void RulePage::clear()
{
    QuotaRule* rules = chain();
    ListView_DeleteAllItems(m_list);
    lornixFreeRules(rules);
    m_records.clear();
    m_changes.forget();
}

void RulePage::hide(const std::vector<std::wstring>& folders)
{
    std::set<std::wstring> keys;
    for (const std::wstring& folder : folders) {
        keys.insert(folderKey(folder));
    }
    const PaintPause pause(m_list);
    ListView_SetItemState(m_list, -1, 0, LVIS_SELECTED);
    int row = 0;
    for (const QuotaRule* rule = chain(); rule != nullptr; rule = rule->next, ++row) {
        if (keys.contains(folderKey(rule->path))) {
            ListView_SetItemState(m_list, row, LVIS_SELECTED, LVIS_SELECTED);
        }
    }
    drop();
    for (const std::wstring& key : keys) {
        m_changes.forget(key);
        m_announced.erase(key);
    }
}

void RulePage::add(void* sid, const std::vector<std::wstring>& folders)
{
    // A new rule may also change others: each that is shown is looked at before and after.
    std::unordered_map<const QuotaRule*, QuotaRule> before;
    for (const QuotaRule* rule = chain(); rule != nullptr; rule = rule->next) {
        before.emplace(rule, *rule);
    }
    PathBlock paths(folders);
    // The result only tells whether a dialog was cancelled; rules of other folders may have been added all
    // the same.
    const bool allTaken = m_quotas->add(sid, paths.list());
    for (const QuotaRule* rule = chain(); rule != nullptr; rule = rule->next) {
        if (const auto known = before.find(rule); known == before.end()) {
            m_changes.cameIn(*rule);
        } else if (!sayTheSame(known->second, *rule)) {
            m_changes.wentOut(known->second);
            m_changes.cameIn(*rule);
        }
    }
    knowRecords();
    // The form by list object leaves it to the host to make the folders known: storing them does.
    if (allTaken && m_quotas->addMakesKnown()) {
        for (const std::wstring& folder : folders) {
            m_announced.insert(folderKey(folder));
        }
    }
    showBackslashes();
}

void RulePage::showBackslashes()
{
    // Looking for rules that conflict turns the slashes of paths round, also those of rules already shown.
    int row = 0;
    for (QuotaRule* rule = chain(); rule != nullptr; rule = rule->next, ++row) {
        if (wcschr(rule->path, L'/') != nullptr) {
            std::replace(rule->path, rule->path + wcslen(rule->path), L'/', L'\\');
            setText(row, kFolder, rule->path);
        }
    }
}

void RulePage::edit()
{
    editing(selectedRow(), [this](QuotaRule&) { return m_quotas->edit(); });
}

void RulePage::editRow(int row)
{
    editing(row, [this, row](QuotaRule& rule) {
        // The dialog knows the record alone: the row is the host's to bring up to date.
        const intptr_t result = editQuotaListEntry(m_dialog, &rule, 0);
        if (result == 0 || result == -1) {
            return false;
        }
        showNumbers(row);
        return true;
    });
}

bool RulePage::changing(int row, const std::function<bool(QuotaRule&)>& change)
{
    QuotaRule* rule = row < 0 ? nullptr : ruleOf(row);
    if (rule == nullptr) {
        return false;
    }
    const QuotaRule before = *rule;
    const bool changed = change(*rule);
    if (!sayTheSame(before, *rule)) {
        m_changes.wentOut(before);
        m_changes.cameIn(*rule);
    }
    return changed;
}

void RulePage::editing(int row, const std::function<bool(QuotaRule&)>& dialog)
{
    changing(row, [&dialog](QuotaRule& rule) {
        const QuotaRule before = rule;
        if (dialog(rule)) {
            return true;
        }
        // Limits that the dialog corrected after a refused OK stay in the record. Here Cancel means cancel.
        rule.hardLimit = before.hardLimit;
        rule.softLimit = before.softLimit;
        rule.inUse = before.inUse;
        return false;
    });
}

std::vector<QuotaRule*> RulePage::selectedRules() const
{
    std::vector<QuotaRule*> rules;
    for (int row = selectedRow(); row >= 0; row = ListView_GetNextItem(m_list, row, LVNI_SELECTED)) {
        if (QuotaRule* rule = ruleOf(row)) {
            rules.push_back(rule);
        }
    }
    return rules;
}

void RulePage::drop()
{
    // The library leaves the records to whoever can tell that nobody needs them any more: that is here.
    const std::vector<QuotaRule*> dropped = selectedRules();
    if (!m_quotas->drop()) {
        return;
    }
    for (QuotaRule* rule : dropped) {
        m_changes.wentOut(*rule);
        rule->next = nullptr;
        rule->prev = nullptr;
        lornixFreeRules(rule);
    }
}

void RulePage::sort(int column)
{
    m_quotas->sort(column);
}

int RulePage::count() const
{
    return m_quotas->count();
}

void RulePage::enableForSelection(int button, int otherButton) const
{
    m_quotas->checkForButtons(button, otherButton);
}

bool RulePage::store(const std::vector<std::wstring>& folders)
{
    std::set<std::wstring> touched = m_changes.folders();
    touched.insert(m_announced.begin(),
                   m_announced.end()); // without a rule in the end, they are to be forgotten
    std::vector<std::wstring> names;
    std::copy_if(folders.begin(), folders.end(), std::back_inserter(names),
                 [&](const std::wstring& folder) { return touched.contains(folderKey(folder)); });
    PathBlock paths(std::move(names));
    const RuleExcerpt rules(chain(), touched);
    if (lornixStoreRules(paths.list(), rules.first()) == 0) {
        return false;
    }
    m_changes.forget();
    m_announced.clear();
    return true;
}

bool RulePage::isModified() const
{
    return m_changes.any();
}

bool RulePage::isModified(const std::vector<std::wstring>& folders) const
{
    return std::any_of(folders.begin(), folders.end(),
                       [&](const std::wstring& folder) { return m_changes.in(folderKey(folder)); });
}

int RulePage::selectedRow() const
{
    return ListView_GetNextItem(m_list, -1, LVNI_SELECTED);
}

void RulePage::selectAll()
{
    ListView_SetItemState(m_list, -1, LVIS_SELECTED, LVIS_SELECTED);
}

void RulePage::setText(int row, int column, std::wstring text)
{
    ListView_SetItemText(m_list, row, column, text.data());
}

void RulePage::showNumbers(int row)
{
    if (const QuotaRule* rule = ruleOf(row)) {
        setText(row, kHardLimit, sizeText(rule->hardLimit));
        setText(row, kSoftLimit, sizeText(rule->softLimit));
        setText(row, kInUse, sizeText(rule->inUse));
        setText(row, kPercent, percentText(rule->inUse, rule->hardLimit));
    }
}

} // namespace host
