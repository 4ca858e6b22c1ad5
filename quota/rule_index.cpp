#include "quota/rule_index.h"

#include "frame/platform.h"
#include "quota/rule.h"

#include <functional>
#include <string_view>

namespace {

// Up to this many rules, in a list or alike, are compared one by one, in the order of the rows.
constexpr std::uint32_t kDirectlyCompared = 32;

std::uint64_t mix(std::uint64_t hash, std::uint64_t value)
{
    hash ^= value + 0x9E3779B97F4A7C15u + (hash << 6) + (hash >> 2);
    return hash * 0xD6E8FEB86659FD93u;
}

/// As much of a hash as the groups know.
std::uint32_t folded(std::uint64_t hash)
{
    return static_cast<std::uint32_t>(hash ^ (hash >> 32));
}

std::uint32_t hashOf(const QuotaRule& rule)
{
    const auto path = std::hash<std::wstring_view>{}(rule.path);
    return folded(mix(mix(path, static_cast<std::uint64_t>(rule.hardLimit)),
                      static_cast<std::uint64_t>(rule.softLimit)));
}

/// Adds an account to the hash of a rule by its binary form; false for what is no valid identifier and can only be
/// compared.
bool addAccount(void* sid, std::uint32_t& hash)
{
    if (sid == nullptr) {
        hash = folded(mix(hash, 0));
        return true;
    }
    if (IsValidSid(sid) == FALSE) {
        return false;
    }
    const std::string_view bytes(static_cast<const char*>(sid), GetLengthSid(sid));
    hash = folded(mix(hash, std::hash<std::string_view>{}(bytes)));
    return true;
}

} // namespace

bool RuleIndex::addIfNew(QuotaRule& rule)
{
    if (isExpected(rule)) {
        return false;
    }
    enterAll();
    const std::uint32_t alike = hashOf(rule);
    if (const std::uint32_t same = find(alike, rule); same != RuleGroups::kNone) {
        m_expected = same + 1;
        return false;
    }
    m_rules.push_back(&rule);
    enter(alike, m_entered);
    return true;
}

/// A store mostly gives the rules in the order in which it gave those that are shown.
bool RuleIndex::isExpected(const QuotaRule& rule)
{
    constexpr int kMostMisses = 16; // then the rows have another order
    if (m_rules.size() <= kDirectlyCompared || m_misses == kMostMisses || m_expected >= m_rules.size()) {
        return false;
    }
    if (!sameRule(*m_rules[m_expected], rule)) {
        ++m_misses;
        return false;
    }
    m_misses = 0;
    ++m_expected;
    return true;
}

void RuleIndex::enterAll()
{
    if (m_entered == m_rules.size()) {
        return;
    }
    m_alike.reserve(m_rules.size());
    while (m_entered < m_rules.size()) {
        enter(hashOf(*m_rules[m_entered]), m_entered);
    }
}

void RuleIndex::enter(std::uint32_t alike, std::uint32_t index)
{
    m_entered = index + 1;
    const std::uint32_t count = m_alike.addOnTop(alike, index);
    const auto addByAccount = [&](std::uint32_t added) {
        std::uint32_t hash = alike;
        if (addAccount(m_rules[added]->sid, hash)) {
            m_byAccount.addOnTop(hash, added);
        }
        return false;
    };
    if (count == kDirectlyCompared + 1) {
        m_alike.find(alike, addByAccount);
    } else if (count > kDirectlyCompared) {
        addByAccount(index);
    }
}

/// @return RuleGroups::kNone when there is no such rule.
std::uint32_t RuleIndex::find(std::uint32_t alike, const QuotaRule& rule) const
{
    const auto isSame = [&](std::uint32_t shown) {
        return sameRule(*m_rules[shown], rule);
    };
    std::uint32_t hash = alike;
    if (m_alike.size(alike) > kDirectlyCompared && addAccount(rule.sid, hash)) {
        return m_byAccount.find(hash, isSame);
    }
    return m_alike.find(alike, isSame);
}
