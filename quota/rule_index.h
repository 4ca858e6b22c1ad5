// The rules that a list shows, found by what they say.
#pragma once

#include "corvane_types.h"
#include "quota/rule_groups.h"

#include <cstddef>
#include <cstdint>

/// Answers whether a list already shows a rule, as comparing it with every row from the top would, but
/// without looking at the rows that differ in limits or folder.
class RuleIndex {
public:
    /// Makes room for as many rules.
    void reserve(std::size_t rules) { m_alike.reserve(rules); }

    /// Adds the record of a row that stands above all rows added before.
    void addOnTop(QuotaRule& rule);

    /// Adds a record in the same way, unless one of the added records is the same rule.
    /// @return whether it was added.
    bool addIfNew(QuotaRule& rule);

private:
    bool contains(std::uint64_t alike, const QuotaRule& rule) const;
    void addOnTop(std::uint64_t alike, QuotaRule& rule);

    /// Rules alike in limits and folder.
    RuleGroups m_alike;
    /// A group's rule copied to its members makes as many rules alike as the group has members: large groups are
    /// split by account.
    RuleGroups m_byAccount;
};
