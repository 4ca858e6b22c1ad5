#include "quota/limits.h"

namespace {

// Sums and products wrap like the processor's: a size near the end of the range must not be undefined
// behaviour.
std::int64_t plus(std::int64_t a, std::int64_t b)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

std::int64_t times(std::int64_t a, std::int64_t b)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

std::int64_t fivePercentAbove(std::int64_t size)
{
    return plus(size, size / 20);
}

std::int64_t fivePercentBelow(std::int64_t size)
{
    return size - size / 20;
}

} // namespace

Limits limitsForSeveralFolders()
{
    return {kDefaultHardLimit, kDefaultHardLimit - kDefaultHardLimit * 5 / 100};
}

Limits proposeLimits(Limits present, std::int64_t objectSize)
{
    Limits limits = present;
    if (limits.hard <= 0) {
        limits.hard = objectSize > 1048576 ? times(5, objectSize) : kDefaultHardLimit;
    }
    if (limits.soft <= 0) {
        limits.soft = fivePercentBelow(limits.hard);
    }
    return limits;
}

CorrectedLimits correctLimits(Limits typed, const LimitRules& rules)
{
    CorrectedLimits result{typed, 0};
    std::int64_t& hard = result.limits.hard;
    std::int64_t& soft = result.limits.soft;
    const auto raiseAbove = [&](std::int64_t size) {
        if (size > hard) {
            hard = fivePercentAbove(size);
            ++result.errors;
        }
    };

    if (hard == -1) {
        hard = fivePercentAbove(rules.objectSize);
    }
    if (!rules.allowBelow) {
        if (rules.forAnyone) {
            raiseAbove(rules.objectSize);
        } else {
            if (rules.ownedCounts) {
                raiseAbove(rules.ownedSize);
            }
            if (rules.allCounts) {
                raiseAbove(rules.objectSize);
            }
        }
    }
    if (hard < kSmallestHardLimit) {
        hard = kSmallestHardLimit;
        ++result.errors;
    }
    if (soft > hard || soft < 0) {
        soft = fivePercentBelow(hard);
        ++result.errors;
    }
    return result;
}
