#include "tests/stress/heap_rules.h"

#include <cstdlib>
#include <cwchar>

QuotaRule* heapRule(const std::wstring& folder, void* sid, int64_t limit)
{
    auto* const rule = static_cast<QuotaRule*>(std::calloc(1, sizeof(QuotaRule)));
    rule->type = sid != nullptr ? QUOTA_RULE_FOR_ACCOUNT : QUOTA_RULE_FOR_ANYONE;
    rule->sid = sid;
    rule->path = _wcsdup(folder.c_str());
    rule->hardLimit = limit;
    rule->softLimit = limit / 2;
    rule->inUse = limit / 3;
    return rule;
}

void releaseRule(QuotaRule* rule)
{
    std::free(rule->path);
    std::free(rule->sid);
    std::free(rule);
}

void releaseChain(QuotaRule* first)
{
    while (first != nullptr) {
        QuotaRule* const next = first->next;
        releaseRule(first);
        first = next;
    }
}
