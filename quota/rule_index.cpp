#include "quota/rule_index.h"

#include "frame/platform.h"
#include "quota/rule.h"

#include <algorithm>
#include <string_view>

namespace {

// Up to this many rules are compared one by one, in the order of the rows.
constexpr std::size_t kDirectlyCompared = 32;

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

/// Hash of an account by its binary form; false for what is no valid identifier and can only be compared.
bool hashAccount(void* sid, std::uint64_t& hash)
{
    if (sid == nullptr) {
        hash = 0;
        return true;
    }
    if (IsValidSid(sid) == FALSE) {
        return false;
    }
    const std::string_view bytes(static_cast<const char*>(sid), GetLengthSid(sid));
    hash = std::hash<std::string_view>{}(bytes);
    return true;
}

} // namespace

void RuleIndex::addOnTop(QuotaRule& rule)
{
    Bucket& bucket = m_buckets[hashOf(rule)];
    bucket.rules.push_back(&rule);
    const auto addByAccount = [&](QuotaRule* added) {
        std::uint64_t account = 0;
        if (hashAccount(added->sid, account)) {
            bucket.byAccount.emplace(account, added);
        }
    };
    if (bucket.rules.size() == kDirectlyCompared + 1) {
        std::for_each(bucket.rules.begin(), bucket.rules.end(), addByAccount);
    } else if (bucket.rules.size() > kDirectlyCompared) {
        addByAccount(&rule);
    }
}

bool RuleIndex::contains(const QuotaRule& rule) const
{
    const auto found = m_buckets.find(hashOf(rule));
    if (found == m_buckets.end()) {
        return false;
    }
    const Bucket& bucket = found->second;
    std::uint64_t account = 0;
    if (bucket.rules.size() > kDirectlyCompared && hashAccount(rule.sid, account)) {
        const auto [first, last] = bucket.byAccount.equal_range(account);
        return std::any_of(first, last, [&](const auto& entry) { return sameRule(*entry.second, rule); });
    }
    return std::any_of(bucket.rules.rbegin(), bucket.rules.rend(),
                       [&](const QuotaRule* shown) { return sameRule(*shown, rule); });
}
