// The rules that a list shows, found by what they say.
#pragma once

#include "corvane_types.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

/// Answers whether a list already shows a rule, as comparing it with every row from the top would, but
/// without looking at the rows that differ in limits or folder.
class RuleIndex {
public:
    /// Adds the record of a row that stands above all rows added before.
    void addOnTop(QuotaRule& rule);

    /// Whether one of the added records is the same rule.
    bool contains(const QuotaRule& rule) const;

private:
    /// Rules alike in limits and folder, the lowest row first. A group's rule copied to its members fills one
    /// such bucket with as many rules as the group has members, so that large ones are split by account.
    struct Bucket {
        std::vector<QuotaRule*> rules;
        std::unordered_multimap<std::uint64_t, QuotaRule*> byAccount;
    };

    std::unordered_map<std::uint64_t, Bucket> m_buckets;
};
