// What a rule chain says, without its addresses: to tell whether anything differs from what is stored.
#pragma once

#include "corvane_types.h"

#include <compare>
#include <cstdint>
#include <map>
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

} // namespace host
