// What the rules shown differ in from those stored.
#pragma once

#include "corvane_types.h"

#include <compare>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace host {

/// What a rule says beside its folder, without its addresses.
struct RuleFacts {
    std::vector<uint8_t> account; ///< binary SID; empty: anyone
    int64_t hardLimit = 0;
    int64_t softLimit = 0;
    int64_t inUse = 0;

    auto operator<=>(const RuleFacts&) const = default;
};

RuleFacts factsOf(const QuotaRule& rule);

/// Keeps count while rules come, change and go, so that no question goes through all of them: a change that is undone by
/// hand leaves no difference, whichever record says it then.
class RuleChanges {
public:
    /// A rule is shown that is not stored.
    void cameIn(const QuotaRule& rule) { count(rule, 1); }

    /// A rule is no longer shown.
    void wentOut(const QuotaRule& rule) { count(rule, -1); }

    /// The rules shown are those stored, in all folders or in one.
    void forget() { m_differences.clear(); }
    void forget(const std::wstring& folderKey) { m_differences.erase(folderKey); }

    bool any() const { return !m_differences.empty(); }
    bool in(const std::wstring& folderKey) const { return m_differences.contains(folderKey); }

    /// By folderKey.
    std::set<std::wstring> folders() const;

private:
    void count(const QuotaRule& rule, int shown);

    /// How much oftener something is shown than stored, by folder: never 0.
    std::map<std::wstring, std::map<RuleFacts, int>> m_differences;
};

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
