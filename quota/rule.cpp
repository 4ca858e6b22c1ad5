#include "quota/rule.h"

#include "quota/folder_path.h"
#include "store/lornix.h"

#include <cwchar>
#include <utility>

CBlock<QuotaRule> ruleMemory()
{
    return CBlock<QuotaRule>(static_cast<QuotaRule*>(std::malloc(sizeof(QuotaRule))));
}

QuotaRule* newRule(CBlock<QuotaRule> memory, const wchar_t* path, const void* sid)
{
    CBlock<QuotaRule> rule = std::move(memory);
    CBlock<wchar_t> ownPath(rule ? _wcsdup(path) : nullptr);
    if (!ownPath) {
        return nullptr;
    }
    *rule = QuotaRule{};
    rule->type = sid != nullptr ? QUOTA_RULE_FOR_ACCOUNT : QUOTA_RULE_FOR_ANYONE;
    rule->inUse = QUOTA_IN_USE_UNKNOWN;
    rule->hardLimit = -1;
    rule->softLimit = -1;
    rule->sid = sid != nullptr ? sidDup(sid) : nullptr;
    rule->path = ownPath.release();
    return rule.release();
}

bool sameAccount(const void* a, const void* b)
{
    return a == b || sidcmp(a, b) == 0;
}

bool sameLimitsAndFolder(const QuotaRule& a, const QuotaRule& b)
{
    return a.hardLimit == b.hardLimit && a.softLimit == b.softLimit && std::wcscmp(a.path, b.path) == 0;
}

bool sameRule(const QuotaRule& a, const QuotaRule& b)
{
    return sameLimitsAndFolder(a, b) && sameAccount(a.sid, b.sid);
}

bool conflicts(const void* sid, wchar_t* path, QuotaRule& existing)
{
    return sameAccount(sid, existing.sid) && sameFolder(path, existing.path);
}
