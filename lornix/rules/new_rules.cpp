#include "lornix/rules/new_rules.h"

#include "lornix/disk/file.h"
#include "lornix/last_error.h"
#include "lornix/rules/rule_book.h"
#include "lornix/sid.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"

#include <algorithm>
#include <cwchar>
#include <functional>
#include <utility>

namespace lornix {
namespace {

/// @param path  null for none.
bool refuse(const std::wstring& rules, const wchar_t* path, std::string_view reason)
{
    report(L"Nothing was stored: " + rules + L", on " + quoted(path == nullptr ? L"" : path) +
           L", cannot be kept, because " + std::wstring(reason.begin(), reason.end()) + L'.');
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

std::uint32_t hashOf(std::span<const std::uint8_t> account, std::uint32_t group)
{
    constexpr std::uint32_t kSpread = 0x9E3779B9u;
    const std::string_view bytes(reinterpret_cast<const char*>(account.data()), account.size());
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(bytes)) + group * kSpread;
}

} // namespace

std::uint32_t NewRules::groupOf(const wchar_t* folder, std::uint32_t guess)
{
    if (guess < m_groups.size() && std::wcscmp(m_groups[guess].folder, folder) == 0) {
        return guess;
    }
    m_key.resize(std::wcslen(folder));
    std::copy_n(folder, m_key.size(), m_key.begin());
    turnIntoFolderKey(m_key);
    return m_groupsByKey.find(hashOfKey(m_key),
                              [&](std::uint32_t group) { return m_groups[group].key == m_key; });
}

bool NewRules::takeFolders(const PathList& folders)
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
            m_groupsByKey.enter(hashOfKey(m_key), static_cast<std::uint32_t>(m_groups.size()));
            m_groups.push_back({paths[i], m_key, {}});
        }
    }
    return true;
}

bool NewRules::takeRules(const QuotaRule* chain)
{
    std::uint32_t group = IndexTable::kNone;
    const wchar_t* path = nullptr;
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next) {
        const char* flaw = flawOf(*rule);
        // Rules of one folder mostly follow each other and spell it alike, and folders stand in the list's order.
        if (flaw == nullptr && (path == nullptr || std::wcscmp(path, rule->path) != 0)) {
            path = rule->path;
            group = groupOf(path, group + 1);
            flaw = group == IndexTable::kNone ? "its folder is not among those to be stored" : nullptr;
            m_lines.startFolder(fromWide(path));
            m_runs.push_back({group, static_cast<std::uint32_t>(m_lines.size()), 0});
        }
        if (flaw != nullptr) {
            return refuse(L"rule " + std::to_wstring(m_accounts.size() + 1), rule->path, flaw);
        }
        const auto sid = sidBytes(rule->sid);
        if (!areTooMany()) {
            m_lines.append(rule->hardLimit, rule->softLimit, rule->inUse, sid);
            m_runs.back().size = static_cast<std::uint32_t>(m_lines.size()) - m_runs.back().start;
        }
        m_accounts.push_back({rule->sid, group, hashOf(sid, group)});
    }
    return true;
}

void NewRules::gather()
{
    std::string_view lines = m_lines.text();
    if (!std::ranges::is_sorted(m_runs, {}, &Run::group)) {
        std::ranges::sort(m_runs, {}, [](const Run& run) { return std::pair(run.group, run.start); });
        for (Run& run : m_runs) {
            const auto start = static_cast<std::uint32_t>(m_gathered.size());
            m_gathered += lines.substr(run.start, run.size);
            run.start = start;
        }
        lines = m_gathered;
    }
    for (const Run& run : m_runs) {
        std::string_view& all = m_groups[run.group].lines;
        all = all.empty() ? lines.substr(run.start, run.size)
                          : std::string_view(all.data(), all.size() + run.size);
    }
}

bool NewRules::isEachAccountOnce()
{
    m_accountsSeen.reset(m_accounts.size());
    for (std::uint32_t i = 0; i < m_accounts.size(); ++i) {
        const Account& mine = m_accounts[i];
        const std::uint32_t same = m_accountsSeen.find(mine.hash, [&](std::uint32_t index) {
            const Account& other = m_accounts[index];
            return mine.hash == other.hash && mine.group == other.group &&
                   sidKey(mine.sid) == sidKey(other.sid);
        });
        if (same != IndexTable::kNone) {
            return refuse(L"rules " + std::to_wstring(same + 1) + L" and " + std::to_wstring(i + 1),
                          m_groups[mine.group].folder, "both are for one account");
        }
        m_accountsSeen.enter(mine.hash, i);
    }
    return true;
}

bool NewRules::take(const PathList& folders, const QuotaRule* chain)
{
    clear();
    if (!takeFolders(folders) || !takeRules(chain)) {
        return false;
    }
    gather();
    return isEachAccountOnce();
}

void NewRules::clear()
{
    constexpr std::size_t kKept = 16 << 20;
    if (m_lines.size() + m_groups.size() * sizeof(Group) > kKept) {
        *this = NewRules();
    }
    m_groups.clear();
    m_runs.clear();
    m_accounts.clear();
    m_gathered.clear();
    m_lines.clear();
}

bool NewRules::areTooMany() const
{
    return m_lines.size() > kLargestFile;
}

} // namespace lornix
