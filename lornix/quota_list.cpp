// The rules of a folder for a list view. It stands above the rooms of rules and of accounts, which know nothing of each
// other.
#include "lornix/accounts/remembered_names.h"
#include "lornix_host.h"
#include "store/lornix.h"

QuotaRule* getQuotaList(const wchar_t* folder)
{
    QuotaRule* const rules = lornixLoadRules(folder);
    for (const QuotaRule* rule = rules; rule != nullptr; rule = rule->next) {
        lornix::expectName(rule->sid); // the list shows them next
    }
    return rules;
}
