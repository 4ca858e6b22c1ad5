#include "host/rule_page.h"

#include "host/folder_name.h"
#include "host/limit_text.h"
#include "host/paint_pause.h"
#include "host/path_block.h"
#include "host/store_errors.h"

#include "corvane.h"
#include "lornix/lornix_host.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <set>

namespace host {
namespace {

// The library's columns that the host writes to.
constexpr int kHardLimit = 1;
constexpr int kSoftLimit = RulePage::kSoftLimitColumn;
constexpr int kPercent = 4;
constexpr int kFolder = 5;

} // namespace

RulePage::RulePage(HWND dialog, int listId)
    : dialog_(dialog)
    , listId_(listId)
    , list_(GetDlgItem(dialog, listId))
{
    initializeListCtrl(dialog_, listId_, nullptr);

    // The library's widths are those of a narrow page. This window has room for the headings.
    constexpr int kWidths[] = {96, 52, 66, 52, 32}; // dialog units
    for (int column = 0; column < kFolder; ++column) {
        RECT unit{0, 0, kWidths[column], 0};
        MapDialogRect(dialog_, &unit);
        ListView_SetColumnWidth(list_, column, unit.right);
    }
}

RulePage::~RulePage()
{
    clear();
}

void RulePage::fitColumns()
{
    RECT area{};
    GetClientRect(list_, &area);
    int room = area.right - GetSystemMetrics(SM_CXVSCROLL);
    for (int column = 0; column < kFolder; ++column) {
        room -= ListView_GetColumnWidth(list_, column);
    }
    constexpr int kLeast = 100;
    ListView_SetColumnWidth(list_, kFolder, std::max(room, kLeast));
}

QuotaRule* RulePage::chain() const
{
    return getDataModified(dialog_, listId_);
}

QuotaRule* RulePage::ruleOf(int row) const
{
    // Not through the row's item data: that is an address only while the record lies below 4 GiB. The chain
    // is in row order.
    QuotaRule* rule = chain();
    for (int i = 0; rule != nullptr && i < row; ++i) {
        rule = rule->next;
    }
    return rule;
}

std::wstring RulePage::show(const std::vector<std::wstring>& folders)
{
    PathBlock paths(folders);
    std::wstring problems;
    {
        const PaintPause pause(list_);
        // All at once: with every call the library looks at all rows that are there already.
        problems = storeErrorsOf([&] { fillUpListCtrl(paths.list(), dialog_, listId_); });
    }
    const RuleState now = stateOf(chain());
    for (const std::wstring& folder : folders) {
        const std::wstring key = folderKey(folder);
        if (const auto rules = now.find(key); rules != now.end()) {
            stored_[key] = rules->second;
        }
    }
    return problems;
}

void RulePage::clear()
{
    QuotaRule* rules = chain();
    ListView_DeleteAllItems(list_);
    lornixFreeRules(rules);
    stored_.clear();
}

void RulePage::hide(const std::vector<std::wstring>& folders)
{
    std::set<std::wstring> keys;
    for (const std::wstring& folder : folders) {
        keys.insert(folderKey(folder));
        stored_.erase(folderKey(folder));
        announced_.erase(folderKey(folder));
    }
    const PaintPause pause(list_);
    ListView_SetItemState(list_, -1, 0, LVIS_SELECTED);
    int row = 0;
    for (const QuotaRule* rule = chain(); rule != nullptr; rule = rule->next, ++row) {
        if (keys.contains(folderKey(rule->path))) {
            ListView_SetItemState(list_, row, LVIS_SELECTED, LVIS_SELECTED);
        }
    }
    drop();
}

std::wstring RulePage::add(void* sid, const std::vector<std::wstring>& folders)
{
    PathBlock paths(folders);
    // The result only tells whether a dialog was cancelled; rules of other folders may have been added all
    // the same, so what changed is found by comparing.
    unsigned char allTaken = 0;
    std::wstring problems =
        storeErrorsOf([&] { allTaken = addToListCtrl(dialog_, listId_, sid, paths.list()); });
    if (allTaken != 0) {
        for (const std::wstring& folder : folders) {
            announced_.insert(folderKey(folder));
        }
    }
    showBackslashes();
    return problems;
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

std::wstring RulePage::edit()
{
    const int row = selectedRow();
    QuotaRule* rule = row < 0 ? nullptr : ruleOf(row);
    if (rule == nullptr) {
        return {};
    }
    const QuotaRule before = *rule;
    bool taken = false;
    std::wstring problems = storeErrorsOf([&] { taken = editFromListCtrl(dialog_, listId_) != 0; });
    if (!taken) {
        // Limits that the dialog corrected after a refused OK stay in the record. Here Cancel means cancel.
        rule->hardLimit = before.hardLimit;
        rule->softLimit = before.softLimit;
        rule->inUse = before.inUse;
    }
    return problems;
}

std::vector<QuotaRule*> RulePage::selectedRules() const
{
    std::vector<QuotaRule*> rules;
    int row = 0;
    for (QuotaRule* rule = chain(); rule != nullptr; rule = rule->next, ++row) {
        if (ListView_GetItemState(list_, row, LVIS_SELECTED) != 0) {
            rules.push_back(rule);
        }
    }
    return rules;
}

void RulePage::drop()
{
    // dropFromListCtrl leaves the records to whoever can tell that nobody needs them any more: that is here.
    const std::vector<QuotaRule*> dropped = selectedRules();
    if (dropFromListCtrl(dialog_, listId_) == 0) {
        return;
    }
    for (QuotaRule* rule : dropped) {
        rule->next = nullptr;
        rule->prev = nullptr;
        lornixFreeRules(rule);
    }
}

void RulePage::sort(int column)
{
    // The form for hosts that hold a list-control object; sortListCtrl does the same for a dialog and an id.
    CorvaneListObject list{{}, list_};
    sortListCtrl2(reinterpret_cast<CListCtrl*>(&list), column);
}

int RulePage::count() const
{
    CorvaneListObject list{{}, list_};
    return countItems2(reinterpret_cast<CListCtrl*>(&list));
}

RulePage::Stored RulePage::store(const std::vector<std::wstring>& folders)
{
    RuleState now = stateOf(chain());
    std::set<std::wstring> touched = changedFolders(now, stored_);
    touched.insert(announced_.begin(),
                   announced_.end()); // without a rule in the end, they are to be forgotten
    std::vector<std::wstring> names;
    std::copy_if(folders.begin(), folders.end(), std::back_inserter(names),
                 [&](const std::wstring& folder) { return touched.contains(folderKey(folder)); });
    PathBlock paths(std::move(names));
    const RuleExcerpt rules(chain(), touched);
    Stored result{};
    result.problems =
        storeErrorsOf([&] { result.done = lornixStoreRules(paths.list(), rules.first()) != 0; });
    if (result.done) {
        stored_ = std::move(now);
        announced_.clear();
    }
    return result;
}

bool RulePage::isModified() const
{
    return stateOf(chain()) != stored_;
}

bool RulePage::isModified(const std::vector<std::wstring>& folders) const
{
    const std::set<std::wstring> changed = changedFolders(stateOf(chain()), stored_);
    return std::any_of(folders.begin(), folders.end(),
                       [&](const std::wstring& folder) { return changed.contains(folderKey(folder)); });
}

int RulePage::selectedRow() const
{
    return ListView_GetNextItem(list_, -1, LVNI_SELECTED);
}

void RulePage::selectAll()
{
    ListView_SetItemState(list_, -1, LVIS_SELECTED, LVIS_SELECTED);
}

void RulePage::setText(int row, int column, std::wstring text)
{
    ListView_SetItemText(list_, row, column, text.data());
}

void RulePage::showLimits(int row)
{
    if (const QuotaRule* rule = ruleOf(row)) {
        setText(row, kHardLimit, sizeText(rule->hardLimit));
        setText(row, kSoftLimit, sizeText(rule->softLimit));
        setText(row, kPercent, percentText(rule->inUse, rule->hardLimit));
    }
}

} // namespace host
