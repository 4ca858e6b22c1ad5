// Loading and storing the rules of folders.
#include "lornix/last_error.h"
#include "lornix/rules/rule_chain.h"
#include "lornix/rules/rule_file.h"
#include "lornix/sid.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"
#include "store/lornix.h"

#include <algorithm>
#include <cwchar>
#include <optional>
#include <unordered_map>
#include <vector>

namespace lornix {
namespace {

/// What the host has seen of the rules of a folder, so that it replaces nothing that it never saw: a mark of them, or
/// nothing when they could not be read. Its user-interface thread alone loads and stores rules.
using Mark = std::uint64_t;
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
    return checksumOf(lines);
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

/// The rules of one folder that are to be stored.
struct FolderGroup {
    const wchar_t* folder; ///< the host's
    std::u16string key;
    std::string lines;
};

/// The account of a rule of the chain.
struct Account {
    const void* sid;
    std::uint32_t group;
    std::uint32_t hash; ///< of both
};

class Storing {
public:
    /// @return false with a report when something in the arguments cannot be stored.
    bool take(const PathList& folders, const QuotaRule* chain);

    /// @return false with a report; what is stored is as it was.
    bool store(DataFolder data);

private:
    bool takeFolders(const PathList& folders);
    /// @param guess  a group that is tried first.
    std::uint32_t groupOf(const wchar_t* path, std::uint32_t guess = IndexTable::kNone);
    bool isEachAccountOnce() const;
    bool change(RuleFile& file, const RuleBook& book, Patience& patience) const;

    std::vector<FolderGroup> m_groups;
    IndexTable m_groupsByKey;
    std::vector<Account> m_accounts; ///< in the order of the chain
    std::size_t m_size = 0;          ///< of all lines
    std::u16string m_key;            ///< of the path looked at last
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

std::uint64_t hashOf(std::u16string_view key)
{
    return std::hash<std::u16string_view>()(key);
}

std::uint32_t hashOf(std::string_view account, std::uint32_t group)
{
    constexpr std::uint32_t kSpread = 0x9E3779B9u;
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(account)) + group * kSpread;
}

std::uint32_t Storing::groupOf(const wchar_t* path, std::uint32_t guess)
{
    if (guess < m_groups.size() && std::wcscmp(m_groups[guess].folder, path) == 0) {
        return guess;
    }
    m_key.resize(std::wcslen(path));
    std::copy_n(path, m_key.size(), m_key.begin());
    turnIntoFolderKey(m_key);
    return m_groupsByKey.find(hashOf(m_key), [&](std::uint32_t group) { return m_groups[group].key == m_key; });
}

bool Storing::takeFolders(const PathList& folders)
{
    wchar_t* const* paths = folders.paths;
    const auto count = static_cast<std::size_t>(std::max(folders.count, 0));
    m_groups.reserve(count);
    m_groupsByKey.reset(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (paths[i] == nullptr || *paths[i] == L'\0') {
            report(L"Nothing was stored: folder " + std::to_wstring(i + 1) + L" of the list has no name.");
            return false;
        }
        if (groupOf(paths[i]) == IndexTable::kNone) {
            m_groupsByKey.enter(hashOf(m_key), static_cast<std::uint32_t>(m_groups.size()));
            m_groups.push_back({paths[i], m_key, {}});
        }
    }
    return true;
}

bool Storing::take(const PathList& folders, const QuotaRule* chain)
{
    if (!takeFolders(folders)) {
        return false;
    }
    // Rules of one folder mostly follow each other and spell it alike.
    const wchar_t* path = nullptr;
    std::uint32_t group = IndexTable::kNone;
    std::string run; // their lines
    RuleLines lines(run);
    const auto endRun = [&] {
        if (!run.empty()) {
            m_groups[group].lines += run;
            m_size += run.size();
            run.clear();
        }
    };
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next) {
        const char* flaw = flawOf(*rule);
        if (flaw == nullptr && (path == nullptr || std::wcscmp(path, rule->path) != 0)) {
            endRun();
            path = rule->path;
            group = groupOf(path, group + 1);
            flaw = group == IndexTable::kNone ? "its folder is not among those to be stored" : nullptr;
            lines.startFolder(fromWide(path));
        }
        if (flaw != nullptr) {
            const std::string reason = flaw;
            return refuse(L"rule " + std::to_wstring(m_accounts.size() + 1), rule->path,
                          {reason.begin(), reason.end()});
        }
        if (m_size + run.size() <= kLargestFile) { // what is more is refused
            lines.append(rule->hardLimit, rule->softLimit, rule->inUse, sidBytes(rule->sid));
        }
        m_accounts.push_back({rule->sid, group, hashOf(sidKey(rule->sid), group)});
    }
    endRun();
    return isEachAccountOnce();
}

bool Storing::isEachAccountOnce() const
{
    IndexTable seen;
    seen.reset(m_accounts.size());
    for (std::uint32_t i = 0; i < m_accounts.size(); ++i) {
        const Account& mine = m_accounts[i];
        const std::uint32_t same = seen.find(mine.hash, [&](std::uint32_t index) {
            const Account& other = m_accounts[index];
            return mine.hash == other.hash && mine.group == other.group && sidKey(mine.sid) == sidKey(other.sid);
        });
        if (same != IndexTable::kNone) {
            return refuse(L"rules " + std::to_wstring(same + 1) + L" and " + std::to_wstring(i + 1),
                          m_groups[mine.group].folder, L"both are for one account");
        }
        seen.enter(mine.hash, i);
    }
    return true;
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

bool Storing::change(RuleFile& file, const RuleBook& book, Patience& patience) const
{
    std::vector<RuleBook::Change> changes;
    std::vector<std::u16string> folders;
    changes.reserve(m_groups.size());
    folders.reserve(m_groups.size());
    bool isChanged = book.condition != Condition::kGood; // what is damaged is mended
    bool mayAll = true;
    for (const FolderGroup& group : m_groups) {
        const RuleBook::Entry before = book.entryOf(group.key);
        const bool isKnown = !group.lines.empty();
        const bool isSame = before.lines == group.lines;
        isChanged = isChanged || !isSame || before.isKnown != isKnown;
        mayAll = (isSame || mayReplace(group, before.lines)) && mayAll;
        folders.push_back(isKnown && !before.isKnown ? fromWide(group.folder) : std::u16string());
        changes.push_back({before, folders.back(), isKnown, group.lines});
    }
    return mayAll && (!isChanged || file.change([&](RuleBook& stored) { stored.change(changes); }, patience));
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
    const bool isTooMuch = m_size > kLargestFile;
    if (isTooMuch) {
        report(L"The rules are too many for one file.");
    }
    if (book == nullptr || isTooMuch || !change(file, *book, patience)) {
        report(L"Nothing was stored.");
        return false;
    }
    for (const FolderGroup& group : m_groups) {
        if (const auto seen = seenRules().find(group.key); seen != seenRules().end()) {
            seen->second = markOf(group.lines);
        }
    }
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
        return storing.take(*folders, chain) && storing.store(DataFolder::current()) ? 1 : 0;
    });
}
