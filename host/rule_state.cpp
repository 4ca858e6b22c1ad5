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

} // namespace host
