#include "host/rule_state.h"

#include "host/folder_name.h"

#include <windows.h>

#include <algorithm>

namespace host {

RuleState stateOf(const QuotaRule* chain)
{
    RuleState state;
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next) {
        RuleFacts facts{{}, rule->hardLimit, rule->softLimit, rule->inUse};
        if (rule->sid != nullptr) {
            const auto* bytes = static_cast<const uint8_t*>(rule->sid);
            facts.account.assign(bytes, bytes + GetLengthSid(rule->sid));
        }
        state[folderKey(rule->path)].push_back(std::move(facts));
    }
    for (auto& [folder, rules] : state) {
        std::sort(rules.begin(), rules.end());
    }
    return state;
}

std::set<std::wstring> changedFolders(const RuleState& one, const RuleState& other)
{
    std::set<std::wstring> changed;
    const auto note = [&changed](const RuleState& state, const RuleState& against) {
        for (const auto& [folder, rules] : state) {
            const auto same = against.find(folder);
            if (same == against.end() || same->second != rules) {
                changed.insert(folder);
            }
        }
    };
    note(one, other);
    note(other, one); // for the folders that only this one has
    return changed;
}

RuleExcerpt::RuleExcerpt(const QuotaRule* chain, const std::set<std::wstring>& folders)
{
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next) {
        if (folders.contains(folderKey(rule->path))) {
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
