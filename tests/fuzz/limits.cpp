#include "quota/limits.h"

#include "fuzz_input.h"
#include "tests/support/oracles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const Limits typed{takeNumber(input), takeNumber(input)};
    LimitRules rules;
    rules.objectSize = takeNumber(input);
    rules.ownedSize = takeNumber(input);
    const unsigned flags = input.empty() ? 0 : input.front();
    rules.forAnyone = (flags & 1) != 0;
    rules.ownedCounts = (flags & 2) != 0;
    rules.allCounts = (flags & 4) != 0;
    rules.allowBelow = (flags & 8) != 0;

    const CorrectedLimits corrected = correctLimits(typed, rules);
    require(corrected.limits.hard >= kSmallestHardLimit, "the hard limit is below the smallest");
    require(corrected.limits.soft >= 0 && corrected.limits.soft <= corrected.limits.hard, "the soft limit");
    require(corrected.errors >= 0 && corrected.errors <= 4, "the number of errors");
    constexpr std::int64_t kFits = std::int64_t{1} << 62;
    if (rules.objectSize >= 0 && rules.objectSize <= kFits && rules.ownedSize >= 0 &&
        rules.ownedSize <= kFits)
    {
        const char* const flaw = oracles::flawOf(corrected, typed, rules);
        require(flaw == nullptr, flaw);
    }

    const Limits proposed = proposeLimits(typed, rules.objectSize);
    require(typed.hard <= 0 || proposed.hard == typed.hard, "a present hard limit was changed");
    require(typed.soft <= 0 || proposed.soft == typed.soft, "a present soft limit was changed");
    return 0;
}
