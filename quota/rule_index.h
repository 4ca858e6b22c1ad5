// The rules that a list shows, found by what they say.
#pragma once

#include "corvane_types.h"
#include "quota/rule_groups.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Answers whether a list already shows a rule, as comparing it with every row from the top would, but without looking
/// at the rows that differ in limits or folder. As long as rules come in the order in which they stand below each other,
/// the next one is all that is looked at; the others are entered into tables when one comes out of turn.
class RuleIndex {
public:
    /// Makes room for as many rules.
    void reserve(std::size_t rules) { m_rules.reserve(rules); }

    /// Adds the record of a row that stands above all rows added before.
    void addOnTop(QuotaRule& rule) { m_rules.push_back(&rule); }

    /// Adds a record in the same way, unless one of the added records is the same rule.
    /// @return whether it was added.
    bool addIfNew(QuotaRule& rule);

    /// The added records, the lowest first.
    std::span<QuotaRule* const> rules() const { return m_rules; }

private:
    bool isExpected(const QuotaRule& rule);
    void enterAll();
    void enter(std::uint32_t alike, std::uint32_t index);
    std::uint32_t find(std::uint32_t alike, const QuotaRule& rule) const;

    std::vector<QuotaRule*> m_rules;
    std::uint32_t m_entered = 0;  ///< how many of them, from the lowest, stand in the groups
    std::uint32_t m_expected = 0; ///< which of them is likely to come next
    int m_misses = 0;             ///< how often in a row it did not

    /// Rules alike in limits and folder.
    RuleGroups m_alike;
    /// A group's rule copied to its members makes as many rules alike as the group has members: large groups are
    /// split by account.
    RuleGroups m_byAccount;
};
