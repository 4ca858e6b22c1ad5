#include "quota/rule_chain.h"

QuotaRule* linkOnTop(std::span<QuotaRule* const> added, QuotaRule* first)
{
    for (QuotaRule* rule : added) {
        rule->next = first;
        rule->prev = nullptr;
        if (first != nullptr) {
            first->prev = rule;
        }
        first = rule;
    }
    return first;
}

void unlinkRule(const QuotaRule& rule)
{
    if (rule.prev != nullptr) {
        rule.prev->next = rule.next;
    }
    if (rule.next != nullptr) {
        rule.next->prev = rule.prev;
    }
}
