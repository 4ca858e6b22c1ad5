// What a rule chain says, without its addresses: to tell what differs from what is stored.
#pragma once

#include "corvane_types.h"

#include <compare>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace host {

struct RuleFacts {
    std::vector<uint8_t> account; ///< binary SID; empty: anyone
    int64_t hardLimit = 0;
    int64_t softLimit = 0;
    int64_t inUse = 0;

    auto operator<=>(const RuleFacts&) const = default;
};

/// The rules of each folder, by folderKey, in an order that does not depend on the chain's. A folder without
/// rules has no entry.
using RuleState = std::map<std::wstring, std::vector<RuleFacts>>;

/// @param chain  first rule; null for none.
RuleState stateOf(const QuotaRule* chain);

/// The folders, by folderKey, whose rules differ between two states.
std::set<std::wstring> changedFolders(const RuleState& one, const RuleState& other);

/// Those rules of a chain that are defined in some folders, as a chain of their own. The records are copies, since
/// those of the list stay linked to each other; accounts and paths are still the list's.
class RuleExcerpt {
public:
    /// @param chain    first rule; null for none. Its accounts and paths must outlive this object.
    /// @param folders  by folderKey.
    RuleExcerpt(const QuotaRule* chain, const std::set<std::wstring>& folders);
    RuleExcerpt(const RuleExcerpt&) = delete;
    RuleExcerpt& operator=(const RuleExcerpt&) = delete;

    /// The first rule, null when there is none. Valid as long as this object.
    const QuotaRule* first() const { return m_rules.empty() ? nullptr : m_rules.data(); }

private:
    std::vector<QuotaRule> m_rules; // in the order of the chain
};

} // namespace host
