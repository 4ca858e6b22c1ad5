#include "host/rule_state.h"

#include "host/folder_name.h"

#include <windows.h>

#include <string_view>
#include <unordered_map>

namespace host {

RuleFacts factsOf(const QuotaRule& rule)
{
    RuleFacts facts{{}, rule.hardLimit, rule.softLimit, rule.inUse};
    if (rule.sid != nullptr) {
        const auto* bytes = static_cast<const uint8_t*>(rule.sid);
        facts.account.assign(bytes, bytes + GetLengthSid(rule.sid));
    }
    return facts;
}

void RuleChanges::count(const QuotaRule& rule, int shown)
{
    const auto folder = m_differences.try_emplace(folderKey(rule.path)).first;
    const auto facts = folder->second.try_emplace(factsOf(rule), 0).first;
    facts->second += shown;
    if (facts->second == 0) {
        folder->second.erase(facts);
    }
    if (folder->second.empty()) {
        m_differences.erase(folder);
    }
}

std::set<std::wstring> RuleChanges::folders() const
{
    std::set<std::wstring> folders;
    for (const auto& difference : m_differences) {
        folders.insert(difference.first);
    }
    return folders;
}

RuleExcerpt::RuleExcerpt(const QuotaRule* chain, const std::set<std::wstring>& folders)
{
    // Many rules, few folders: each spelling of a folder is looked up once.
    std::unordered_map<std::wstring_view, bool> wanted;
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next) {
        const auto [folder, isNew] = wanted.try_emplace(rule->path);
        if (isNew) {
            folder->second = folders.contains(folderKey(rule->path));
        }
        if (folder->second) {
            m_rules.push_back(*rule);
        }
    }
    // Only now, when no record moves any more.
    for (size_t i = 0; i < m_rules.size(); ++i) {
        m_rules[i].prev = i == 0 ? nullptr : &m_rules[i - 1];
        m_rules[i].next = i + 1 == m_rules.size() ? nullptr : &m_rules[i + 1];
    }
}

} // namespace host
