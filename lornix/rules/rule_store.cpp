// Loading and storing the rules of folders.
#include "lornix/accounts/remembered_names.h"
#include "lornix/last_error.h"
#include "lornix/rules/rule_file.h"
#include "lornix/sid.h"
#include "lornix/text/escaped_text.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <unordered_map>

namespace lornix {
namespace {

/// What the host has seen of the rules of a folder, so that it replaces nothing that it never saw: a mark of them, or
/// nothing when they could not be read. Its user-interface thread alone loads and stores rules.
using Mark = std::size_t;
using SeenRules = std::unordered_map<std::u16string, std::optional<Mark>>;

SeenRules& seenRules()
{
    static SeenRules seen;
    static std::uint32_t choice = 0;
    if (choice != DataFolder::timesChosen()) {
        choice = DataFolder::timesChosen();
        seen.clear();
    }
    return seen;
}

Mark markOf(std::string_view lines)
{
    return std::hash<std::string_view>()(lines);
}

std::wstring quoted(std::u16string_view folder)
{
    return L'"' + toWide(folder) + L'"';
}

using Chain = Owned<QuotaRule*, lornixFreeRules>;

wchar_t* copyOf(std::u16string_view text)
{
    auto* copy = static_cast<wchar_t*>(std::malloc((text.size() + 1) * sizeof(wchar_t)));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    *std::copy(text.begin(), text.end(), copy) = L'\0';
    return copy;
}

/// @param sid  empty for anyone.
Chain newRecord(std::u16string_view folder, std::span<const std::uint8_t> sid)
{
    Chain record(static_cast<QuotaRule*>(std::calloc(1, sizeof(QuotaRule))));
    if (record == nullptr) {
        throw std::bad_alloc();
    }
    record->type = sid.empty() ? QUOTA_RULE_FOR_ANYONE : QUOTA_RULE_FOR_ACCOUNT;
    if (!sid.empty()) {
        record->sid = sidDup(sid.data());
        if (record->sid == nullptr) {
            throw std::bad_alloc();
        }
    }
    record->path = copyOf(folder);
    return record;
}

QuotaRule* recordOf(const StoredRule& rule)
{
    Chain record = newRecord(rule.folder, rule.sid.bytes());
    record->inUse = rule.inUse;
    record->hardLimit = rule.hardLimit;
    record->softLimit = rule.softLimit;
    return record.release();
}

Chain chainOf(const std::vector<StoredRule>& rules)
{
    Chain first;
    QuotaRule* last = nullptr;
    for (const StoredRule& rule : rules) {
        QuotaRule* record = recordOf(rule);
        record->prev = last;
        if (last == nullptr) {
            first.reset(record);
        } else {
            last->next = record;
        }
        last = record;
    }
    return first;
}

QuotaRule* loadRules(const wchar_t* folder)
{
    return reporting<QuotaRule*>(nullptr, [&]() -> QuotaRule* {
        if (folder == nullptr || *folder == L'\0') {
            report(L"No folder was given to load the rules of.");
            return nullptr;
        }
        const DataFolder data = DataFolder::current();
        if (!data.isKnown()) {
            return nullptr;
        }
        std::u16string key = folderKey(fromWide(folder));
        Patience patience = Patience::toRead();
        const RuleBook* book = RuleFile(data).read(patience);
        Chain chain = chainOf(book == nullptr ? std::vector<StoredRule>() : book->rulesOf(key));
        seenRules()[key] = book == nullptr ? std::optional<Mark>() : markOf(book->entryOf(key).lines);
        return chain.release();
    });
}

/// A rule of the chain, and which one it is.
struct Row {
    const QuotaRule* rule;
    std::size_t number;
};

/// The rules of one folder that are to be stored.
struct FolderGroup {
    std::u16string folder;
    std::u16string key;
    std::vector<Row> rows;
    std::size_t start = 0; ///< of their lines
    std::size_t size = 0;
};

class Storing {
public:
    /// @return false with a report when something in the arguments cannot be stored.
    bool sort(const PathList& folders, const QuotaRule* chain);

    /// @return false with a report; what is stored is as it was.
    bool store(DataFolder data);

private:
    FolderGroup* groupOf(const QuotaRule& rule);
    bool isEachAccountOnce();
    void write();
    std::string_view linesOf(const FolderGroup& group) const
    {
        return {m_lines.data() + group.start, group.size};
    }
    bool collect(const RuleBook& book, std::vector<RuleBook::Change>& changes) const;

    std::vector<FolderGroup> m_groups;
    std::unordered_map<std::u16string, std::size_t> m_groupsByKey;
    std::wstring_view m_lastPath;
    FolderGroup* m_lastGroup = nullptr;
    std::string m_lines;
    std::size_t m_size = 0; ///< that they will have, about
};

constexpr std::size_t kUsualLine = 90;

bool refuse(const std::wstring& rules, const wchar_t* path, const std::wstring& reason)
{
    report(L"Nothing was stored: " + rules + L", on " +
           quoted(path == nullptr ? std::u16string() : fromWide(path)) + L", cannot be kept, because " +
           reason + L'.');
    return false;
}

/// @return what keeps a rule from being stored, or null.
const char* flawOf(const QuotaRule& rule)
{
    if (rule.path == nullptr || *rule.path == L'\0') {
        return "it names no folder";
    }
    if (rule.sid != nullptr && !isSid(rule.sid)) {
        return "its account is no valid security identifier";
    }
    return flawOfLimits(rule.hardLimit, rule.softLimit);
}

FolderGroup* Storing::groupOf(const QuotaRule& rule)
{
    // Rules of one folder mostly follow each other and spell it alike.
    if (const std::wstring_view path = rule.path; m_lastGroup == nullptr || path != m_lastPath) {
        m_lastPath = path;
        const auto found = m_groupsByKey.find(folderKey(fromWide(path)));
        m_lastGroup = found == m_groupsByKey.end() ? nullptr : &m_groups[found->second];
    }
    return m_lastGroup;
}

bool Storing::sort(const PathList& folders, const QuotaRule* chain)
{
    wchar_t* const* paths = folders.paths;
    for (std::int32_t i = 0; i < folders.count; ++i) {
        if (paths[i] == nullptr || *paths[i] == L'\0') {
            report(L"Nothing was stored: folder " + std::to_wstring(i + 1) + L" of the list has no name.");
            return false;
        }
        FolderGroup group{fromWide(paths[i]), folderKey(fromWide(paths[i])), {}};
        if (m_groupsByKey.try_emplace(group.key, m_groups.size()).second) {
            m_groups.push_back(std::move(group));
        }
    }
    std::size_t number = 1;
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next, ++number) {
        const char* flaw = flawOf(*rule);
        FolderGroup* group = flaw == nullptr ? groupOf(*rule) : nullptr;
        if (group == nullptr) {
            const std::string reason = flaw == nullptr ? "its folder is not among those to be stored" : flaw;
            return refuse(L"rule " + std::to_wstring(number), rule->path, {reason.begin(), reason.end()});
        }
        group->rows.push_back({rule, number});
        m_size += kUsualLine + m_lastPath.size();
    }
    return isEachAccountOnce();
}

bool Storing::isEachAccountOnce()
{
    std::unordered_map<std::string_view, std::size_t> numbers; // of the rows, by their accounts
    for (const FolderGroup& group : m_groups) {
        numbers.clear();
        for (const Row& row : group.rows) {
            const auto sid = sidBytes(row.rule->sid);
            const std::string_view bytes(reinterpret_cast<const char*>(sid.data()), sid.size());
            const auto [other, isFirst] = numbers.try_emplace(bytes, row.number);
            if (!isFirst) {
                return refuse(L"rules " + std::to_wstring(other->second) + L" and " +
                                  std::to_wstring(row.number),
                              toWide(group.folder).c_str(), L"both are for one account");
            }
        }
    }
    return true;
}

void Storing::write()
{
    std::wstring_view path;
    std::string escaped;
    m_lines.reserve(m_size);
    for (FolderGroup& group : m_groups) {
        group.start = m_lines.size();
        for (const Row& row : group.rows) {
            const QuotaRule& rule = *row.rule;
            if (path != rule.path) {
                path = rule.path;
                escaped.clear();
                appendEscaped(escaped, fromWide(path));
            }
            appendRule(m_lines, rule.hardLimit, rule.softLimit, rule.inUse, sidBytes(rule.sid), escaped);
        }
        group.size = m_lines.size() - group.start;
    }
}

/// @return false with a report when a host would replace rules that it has not seen.
bool mayReplace(const FolderGroup& group, std::string_view before)
{
    const auto seen = seenRules().find(group.key);
    if (seen == seenRules().end() || (seen->second && *seen->second == markOf(before))) {
        return true; // nobody asked for them, or they are as they were seen
    }
    const std::wstring rules = L"The rules of " + quoted(group.folder);
    report(!seen->second
               ? rules +
                     L" could not be read and are not replaced unseen. Read them again before changing them."
               : rules + L" were changed by somebody else since they were read here. Read them again before "
                         L"changing them.");
    return false;
}

/// @return false with a report when rules of some folders must not be replaced.
bool Storing::collect(const RuleBook& book, std::vector<RuleBook::Change>& changes) const
{
    bool mayAll = true;
    for (const FolderGroup& group : m_groups) {
        const RuleBook::Entry before = book.entryOf(group.key);
        const bool isKnown = !group.rows.empty();
        const bool isSame = before.lines == linesOf(group);
        if (!isSame && !mayReplace(group, before.lines)) {
            mayAll = false;
        } else if (!isSame || before.isKnown != isKnown) {
            changes.push_back({group.key, group.folder, linesOf(group), isKnown});
        }
    }
    return mayAll;
}

bool Storing::store(DataFolder data)
{
    const auto lock = openForChange(data, L"Nothing was stored");
    if (!lock) {
        return false;
    }
    write();
    RuleFile file(data);
    Patience patience;
    const RuleBook* book = file.read(patience);
    std::vector<RuleBook::Change> changes;
    if (m_lines.size() > static_cast<std::size_t>(kLargestFile)) {
        report(L"The rules are too many for one file.");
        book = nullptr;
    }
    bool isDone = book != nullptr && collect(*book, changes);
    // Also with no change: what is damaged is mended.
    if (isDone && (!changes.empty() || book->condition != Condition::kGood)) {
        isDone = file.replace(book->with(changes), patience);
    }
    if (!isDone) {
        report(L"Nothing was stored.");
        return false;
    }
    for (const FolderGroup& group : m_groups) {
        if (const auto seen = seenRules().find(group.key); seen != seenRules().end()) {
            seen->second = markOf(linesOf(group));
        }
    }
    return true;
}

} // namespace
} // namespace lornix

QuotaRule* getQuotaList(const wchar_t* folder)
{
    QuotaRule* const rules = lornix::loadRules(folder);
    for (const QuotaRule* rule = rules; rule != nullptr; rule = rule->next) {
        lornix::expectName(rule->sid); // a list shows them
    }
    return rules;
}

QuotaRule* lornixLoadRules(const wchar_t* folder)
{
    return lornix::loadRules(folder);
}

int lornixStoreRules(const PathList* folders, const QuotaRule* chain)
{
    using namespace lornix;
    return reporting(0, [&] {
        if (folders == nullptr) {
            report(L"No folders were given to store the rules of.");
            return 0;
        }
        Storing storing;
        return storing.sort(*folders, chain) && storing.store(DataFolder::current()) ? 1 : 0;
    });
}

QuotaRule* lornixNewRule(const wchar_t* folder, const void* sid)
{
    using namespace lornix;
    return reporting<QuotaRule*>(nullptr, [&]() -> QuotaRule* {
        if (folder == nullptr || (sid != nullptr && !isSid(sid))) {
            report(L"A rule without a folder, or for an account that is no valid SID, was asked for.");
            return nullptr;
        }
        return newRecord(fromWide(folder), sidBytes(sid)).release();
    });
}

void lornixFree(void* block)
{
    std::free(block);
}

void lornixFreeRules(QuotaRule* chain)
{
    while (chain != nullptr) {
        QuotaRule* next = chain->next;
        std::free(chain->sid);
        std::free(chain->path);
        std::free(chain);
        chain = next;
    }
}
