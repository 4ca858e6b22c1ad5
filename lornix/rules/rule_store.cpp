// Loading and storing the rules of folders.
#include "lornix/last_error.h"
#include "lornix/rules/rule_chain.h"
#include "lornix/rules/rule_file.h"
#include "lornix/sid.h"
#include "lornix/text/escaped_text.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"
#include "store/lornix.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

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
        const std::string_view lines = book == nullptr ? std::string_view() : book->entryOf(key).lines;
        Chain chain = chainOf(lines);
        seenRules()[key] = book == nullptr ? std::optional<Mark>() : markOf(lines);
        return chain.release();
    });
}

/// A rule of the chain, which one it is, and the folder it belongs to.
struct Row {
    const QuotaRule* rule;
    std::uint32_t number;
    std::uint32_t group;
};

/// The rules of one folder that are to be stored.
struct FolderGroup {
    std::u16string folder;
    std::u16string key;
    std::span<const Row> rows;
};

class Storing {
public:
    /// @return false with a report when something in the arguments cannot be stored.
    bool sort(const PathList& folders, const QuotaRule* chain);

    /// @return false with a report; what is stored is as it was.
    bool store(DataFolder data);

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    bool takeFolders(const PathList& folders);
    std::uint32_t groupOf(const QuotaRule& rule);
    bool isEachAccountOnce() const;
    RuleBook bookAfter(const RuleBook& book) const;
    bool mayBecome(const RuleBook& book, const RuleBook& next, bool& isChanged) const;
    void noteSeen(const RuleBook& book) const;

    std::vector<FolderGroup> m_groups;
    std::unordered_map<std::u16string_view, std::uint32_t> m_groupsByKey;
    std::vector<Row> m_rows; // in the order of the groups
    std::wstring_view m_lastPath;
    std::uint32_t m_lastGroup = kNone;
    std::u16string m_key;   // of the path
    std::size_t m_room = 0; // that the lines need, about
};

/// @param path  null for none.
bool refuse(const std::wstring& rules, const wchar_t* path, const std::wstring& reason)
{
    report(L"Nothing was stored: " + rules + L", on " + quoted(path == nullptr ? L"" : path) +
           L", cannot be kept, because " + reason + L'.');
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

std::uint32_t Storing::groupOf(const QuotaRule& rule)
{
    // Rules of one folder mostly follow each other and spell it alike.
    if (m_lastGroup == kNone || rule.path != m_lastPath) {
        m_lastPath = rule.path;
        assignFolderKey(m_key, fromWide(m_lastPath));
        const auto found = m_groupsByKey.find(m_key);
        m_lastGroup = found == m_groupsByKey.end() ? kNone : found->second;
    }
    return m_lastGroup;
}

bool Storing::takeFolders(const PathList& folders)
{
    wchar_t* const* paths = folders.paths;
    m_groups.reserve(
        static_cast<std::size_t>(std::max(folders.count, 0))); // none moves: others look at their keys
    for (std::int32_t i = 0; i < folders.count; ++i) {
        if (paths[i] == nullptr || *paths[i] == L'\0') {
            report(L"Nothing was stored: folder " + std::to_wstring(i + 1) + L" of the list has no name.");
            return false;
        }
        FolderGroup& group = m_groups.emplace_back();
        group.folder = fromWide(paths[i]);
        assignFolderKey(group.key, group.folder);
        if (!m_groupsByKey.try_emplace(group.key, static_cast<std::uint32_t>(m_groups.size() - 1)).second) {
            m_groups.pop_back();
        }
    }
    return true;
}

bool Storing::sort(const PathList& folders, const QuotaRule* chain)
{
    if (!takeFolders(folders)) {
        return false;
    }
    std::uint32_t number = 1;
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next, ++number) {
        const char* flaw = flawOf(*rule);
        const std::uint32_t group = flaw == nullptr ? groupOf(*rule) : kNone;
        if (group == kNone) {
            const std::string reason = flaw == nullptr ? "its folder is not among those to be stored" : flaw;
            return refuse(L"rule " + std::to_wstring(number), rule->path, {reason.begin(), reason.end()});
        }
        m_rows.push_back({rule, number, group});
        m_room += kUsualLine + m_lastPath.size();
    }
    const auto place = [](const Row& row) {
        return std::pair(row.group, row.number);
    };
    if (!std::ranges::is_sorted(m_rows, {}, place)) {
        std::ranges::sort(m_rows, {}, place);
    }
    for (std::size_t first = 0, next = 0; first < m_rows.size(); first = next) {
        const std::uint32_t group = m_rows[first].group;
        while (next < m_rows.size() && m_rows[next].group == group) {
            ++next;
        }
        m_groups[group].rows = std::span(m_rows).subspan(first, next - first);
    }
    return isEachAccountOnce();
}

std::string_view accountOf(const Row& row)
{
    return sidKey(row.rule->sid);
}

bool Storing::isEachAccountOnce() const
{
    struct Account {
        std::size_t hash;
        const Row* row;
        bool operator<(const Account& other) const
        {
            if (hash != other.hash) {
                return hash < other.hash;
            }
            const int order = accountOf(*row).compare(accountOf(*other.row));
            return order != 0 ? order < 0 : row->number < other.row->number;
        }
    };
    std::vector<Account> accounts;
    for (const FolderGroup& group : m_groups) {
        accounts.clear();
        for (const Row& row : group.rows) {
            accounts.push_back({std::hash<std::string_view>()(accountOf(row)), &row});
        }
        std::sort(accounts.begin(), accounts.end());
        const auto repeated = std::ranges::adjacent_find(accounts, [](const Account& a, const Account& b) {
            return a.hash == b.hash && accountOf(*a.row) == accountOf(*b.row);
        });
        if (repeated != accounts.end()) {
            return refuse(L"rules " + std::to_wstring(repeated[0].row->number) + L" and " +
                              std::to_wstring(repeated[1].row->number),
                          toWide(group.folder).c_str(), L"both are for one account");
        }
    }
    return true;
}

void write(std::span<const Row> rows, RuleLines& lines)
{
    std::wstring_view path;
    std::string escaped;
    for (const Row& row : rows) {
        const QuotaRule& rule = *row.rule;
        if (path != rule.path) {
            path = rule.path;
            escaped.clear();
            appendEscaped(escaped, fromWide(path));
        }
        lines.append(rule.hardLimit, rule.softLimit, rule.inUse, sidBytes(rule.sid), escaped);
    }
}

/// @return false with a report when a host would replace rules that it has not seen.
bool mayReplace(const FolderGroup& group, std::string_view before)
{
    const auto seen = seenRules().find(group.key);
    if (seen == seenRules().end() || (seen->second && *seen->second == markOf(before))) {
        return true; // nobody asked for them, or they are as they were seen
    }
    const std::wstring rules = L"The rules of " + quoted(toWide(group.folder));
    report(!seen->second
               ? rules +
                     L" could not be read and are not replaced unseen. Read them again before changing them."
               : rules + L" were changed by somebody else since they were read here. Read them again before "
                         L"changing them.");
    return false;
}

RuleBook Storing::bookAfter(const RuleBook& book) const
{
    std::vector<RuleBook::Change> changes;
    changes.reserve(m_groups.size());
    for (const FolderGroup& group : m_groups) {
        changes.push_back({group.key, group.folder, !group.rows.empty()});
    }
    return book.with(changes, m_room,
                     [this](std::size_t change, RuleLines& lines) { write(m_groups[change].rows, lines); });
}

/// @param isChanged  receives whether there is anything to store.
/// @return false with a report when rules of some folders must not be replaced.
bool Storing::mayBecome(const RuleBook& book, const RuleBook& next, bool& isChanged) const
{
    bool mayAll = true;
    isChanged = book.condition != Condition::kGood; // what is damaged is mended
    for (const FolderGroup& group : m_groups) {
        const RuleBook::Entry before = book.entryOf(group.key);
        const RuleBook::Entry after = next.entryOf(group.key);
        const bool isSame = before.lines == after.lines;
        isChanged = isChanged || !isSame || before.isKnown != after.isKnown;
        mayAll = (isSame || mayReplace(group, before.lines)) && mayAll;
    }
    return mayAll;
}

void Storing::noteSeen(const RuleBook& book) const
{
    for (const FolderGroup& group : m_groups) {
        if (const auto seen = seenRules().find(group.key); seen != seenRules().end()) {
            seen->second = markOf(book.entryOf(group.key).lines);
        }
    }
}

bool Storing::store(DataFolder data)
{
    const auto lock = openForChange(data, L"Nothing was stored");
    if (!lock) {
        return false;
    }
    RuleFile file(data);
    Patience patience;
    const RuleBook* book = file.read(patience);
    if (m_rows.size() > static_cast<std::size_t>(kLargestFile) / kShortestLine) {
        report(L"The rules are too many for one file.");
        book = nullptr;
    }
    if (book != nullptr) {
        RuleBook next = bookAfter(*book);
        bool isChanged = false;
        if (!mayBecome(*book, next, isChanged)) {
            book = nullptr;
        } else if (isChanged) {
            book = file.replace(std::move(next), patience);
        }
    }
    if (book == nullptr) {
        report(L"Nothing was stored.");
        return false;
    }
    noteSeen(*book);
    return true;
}

} // namespace
} // namespace lornix

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
