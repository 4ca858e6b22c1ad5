// Rules as a doubly linked chain of records.
#pragma once

#include "corvane_types.h"

#include <span>

/// Links records one after the other; a null record is passed over.
class ChainBuilder {
public:
    /// Appends a record. Its links are overwritten.
    void append(QuotaRule* rule)
    {
        if (rule == nullptr) {
            return;
        }
        rule->prev = m_last;
        rule->next = nullptr;
        (m_last != nullptr ? m_last->next : m_first) = rule;
        m_last = rule;
    }

    QuotaRule* first() const { return m_first; }
    QuotaRule* last() const { return m_last; }

private:
    QuotaRule* m_first = nullptr;
    QuotaRule* m_last = nullptr;
};

/// Links records in front of a chain, each in front of the one before it. @return the new first record.
QuotaRule* linkOnTop(std::span<QuotaRule* const> added, QuotaRule* first);

/// Takes a record out of its chain; its own links stay.
void unlinkRule(const QuotaRule& rule);
