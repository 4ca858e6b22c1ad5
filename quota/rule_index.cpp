#include "quota/rule_index.h"

#include "frame/platform.h"
#include "quota/rule.h"

#include <functional>
#include <string_view>

namespace {

// Up to this many rules are compared one by one, in the order of the rows.
constexpr std::uint32_t kDirectlyCompared = 32;

std::uint64_t mix(std::uint64_t hash, std::uint64_t value)
{
    hash ^= value + 0x9E3779B97F4A7C15u + (hash << 6) + (hash >> 2);
    return hash * 0xD6E8FEB86659FD93u;
}

std::uint64_t hashOf(const QuotaRule& rule)
{
    const auto path = std::hash<std::wstring_view>{}(rule.path);
    return mix(mix(path, static_cast<std::uint64_t>(rule.hardLimit)),
               static_cast<std::uint64_t>(rule.softLimit));
}

/// Hash of a rule and its account by its binary form; false for what is no valid identifier and can only be
/// compared.
bool addAccount(void* sid, std::uint64_t& hash)
{
    if (sid == nullptr) {
        hash = mix(hash, 0);
        return true;
    }
    if (IsValidSid(sid) == FALSE) {
        return false;
    }
    const std::string_view bytes(static_cast<const char*>(sid), GetLengthSid(sid));
    hash = mix(hash, std::hash<std::string_view>{}(bytes));
    return true;
}

} // namespace

void RuleIndex::addOnTop(QuotaRule& rule)
{
    addOnTop(hashOf(rule), rule);
}

bool RuleIndex::addIfNew(QuotaRule& rule)
{
    const std::uint64_t alike = hashOf(rule);
    if (contains(alike, rule)) {
        return false;
    }
    addOnTop(alike, rule);
    return true;
}

void RuleIndex::addOnTop(std::uint64_t alike, QuotaRule& rule)
{
    const std::uint32_t count = m_alike.addOnTop(alike, rule);
    const auto addByAccount = [&](QuotaRule& added) {
        std::uint64_t hash = alike;
        if (addAccount(added.sid, hash)) {
            m_byAccount.addOnTop(hash, added);
        }
        return false;
    };
    if (count == kDirectlyCompared + 1) {
        m_alike.any(alike, addByAccount);
    } else if (count > kDirectlyCompared) {
        addByAccount(rule);
    }
}

bool RuleIndex::contains(std::uint64_t alike, const QuotaRule& rule) const
{
    const auto isSame = [&](const QuotaRule& shown) {
        return sameRule(shown, rule);
    };
    std::uint64_t hash = alike;
    if (m_alike.size(alike) > kDirectlyCompared && addAccount(rule.sid, hash)) {
        return m_byAccount.any(hash, isSame);
    }
    return m_alike.any(alike, isSame);
}
