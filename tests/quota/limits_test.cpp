#include "quota/limits.h"

#include "tests/support/oracles.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr std::int64_t kOneMiB = 1048576;

void expectLimits(Limits limits, std::int64_t hard, std::int64_t soft)
{
    EXPECT_EQ(limits.hard, hard);
    EXPECT_EQ(limits.soft, soft);
}

void expectCorrected(Limits typed, const LimitRules& rules, std::int64_t hard, std::int64_t soft, int errors)
{
    const CorrectedLimits corrected = correctLimits(typed, rules);
    EXPECT_EQ(corrected.limits.hard, hard);
    EXPECT_EQ(corrected.limits.soft, soft);
    EXPECT_EQ(corrected.errors, errors);
}

LimitRules anyone(std::int64_t objectSize, bool allowBelow = false)
{
    LimitRules rules;
    rules.forAnyone = true;
    rules.objectSize = objectSize;
    rules.allowBelow = allowBelow;
    return rules;
}

TEST(LimitsForSeveralFolders, HundredAndNinetyFiveMegabytes)
{
    expectLimits(limitsForSeveralFolders(), 100 * kOneMiB, 95 * kOneMiB);
}

TEST(ProposeLimits, FiveTimesTheFolderAboveOneMegabyte)
{
    expectLimits(proposeLimits({-1, -1}, 3 * kOneMiB), 15 * kOneMiB, 15 * kOneMiB - 15 * kOneMiB / 20);
    expectLimits(proposeLimits({-1, -1}, kOneMiB + 1), 5 * (kOneMiB + 1),
                 5 * (kOneMiB + 1) - 5 * (kOneMiB + 1) / 20);
}

TEST(ProposeLimits, HundredMegabytesForSmallFolders)
{
    expectLimits(proposeLimits({-1, -1}, 0), 104857600, 99614720);
    expectLimits(proposeLimits({-1, -1}, kOneMiB), 104857600, 99614720);
    expectLimits(proposeLimits({0, 0}, 0), 104857600, 99614720);
}

TEST(ProposeLimits, PresentLimitsStay)
{
    expectLimits(proposeLimits({5000, 4000}, 9 * kOneMiB), 5000, 4000);
    expectLimits(proposeLimits({5000, -1}, 9 * kOneMiB), 5000, 4750);
    expectLimits(proposeLimits({-1, 4000}, 9 * kOneMiB), 45 * kOneMiB, 4000);
    expectLimits(proposeLimits({1, 0}, 0), 1, 1); // 5 % of 1 is nothing
    expectLimits(proposeLimits({100, 300}, 0), 100,
                 300); // only a typed soft limit is held against the hard one
}

TEST(ProposeLimits, HugeFoldersWrap)
{
    const Limits limits = proposeLimits({-1, -1}, INT64_MAX);
    EXPECT_EQ(limits.hard, INT64_MAX - 4); // 5 * (2^63 - 1) modulo 2^64
}

TEST(CorrectLimits, GoodLimitsStay)
{
    expectCorrected({2048, 1024}, anyone(2048), 2048, 1024, 0);
    expectCorrected({1024, 0}, {}, 1024, 0, 0);
    expectCorrected({1024, 1024}, {}, 1024, 1024, 0);
}

TEST(CorrectLimits, NoNumberBecomesTheFoldersSizeWithoutAWord)
{
    expectCorrected({-1, 1000}, anyone(100000), 105000, 1000, 0);
    LimitRules account;
    account.objectSize = 100000;
    expectCorrected({-1, 1000}, account, 105000, 1000, 0);
}

TEST(CorrectLimits, NoNumberOnASmallFolderMeetsTheFloor)
{
    expectCorrected({-1, 100}, anyone(500), 1024, 100, 1);
    expectCorrected({-1, 0}, anyone(0), 1024, 0, 1);
    expectCorrected({-1, 100}, anyone(976), 1024, 100, 0); // 976 + 48
}

TEST(CorrectLimits, HardLimitBelow1024)
{
    expectCorrected({500, 100}, {}, 1024, 100, 1);
    expectCorrected({1023, 100}, {}, 1024, 100, 1);
    expectCorrected({0, 0}, {}, 1024, 0, 1);
    expectCorrected({-2, 0}, {}, 1024, 0, 1);
}

TEST(CorrectLimits, SoftLimitAboveHardOrNegative)
{
    expectCorrected({2000, 2001}, {}, 2000, 1900, 1);
    expectCorrected({2000, -1}, {}, 2000, 1900, 1);
    expectCorrected({2000, 2000}, {}, 2000, 2000, 0);
    expectCorrected({500, 1024}, {}, 1024, 1024, 1);
    expectCorrected({500, 2000}, {}, 1024, 973, 2); // 1024 - 51
}

TEST(CorrectLimits, AnyoneIsHeldToTheFoldersSize)
{
    expectCorrected({100000, 1000}, anyone(100001), 105001, 1000, 1);
    expectCorrected({100001, 1000}, anyone(100001), 100001, 1000, 0);
    expectCorrected({100000, 1000}, anyone(100001, true), 100000, 1000, 0);
}

TEST(CorrectLimits, AccountIsHeldToWhatCounts)
{
    LimitRules rules;
    rules.objectSize = 400000;
    rules.ownedSize = 200000;
    expectCorrected({100000, 1000}, rules, 100000, 1000, 0);

    rules.ownedCounts = true;
    expectCorrected({100000, 1000}, rules, 210000, 1000, 1);
    expectCorrected({200000, 1000}, rules, 200000, 1000, 0);

    rules.allCounts = true; // both tests in turn, each counted
    expectCorrected({100000, 1000}, rules, 420000, 1000, 2);
    rules.ownedCounts = false;
    expectCorrected({100000, 1000}, rules, 420000, 1000, 1);

    rules.allowBelow = true;
    expectCorrected({100000, 1000}, rules, 100000, 1000, 0);
}

TEST(CorrectLimits, RadioButtonsDoNotMatterForAnyone)
{
    LimitRules rules = anyone(1000);
    rules.ownedSize = 900000;
    rules.ownedCounts = true;
    expectCorrected({2000, 1000}, rules, 2000, 1000, 0);
}

TEST(CorrectLimits, EverySizeAtOnceIsCounted)
{
    LimitRules rules;
    rules.objectSize = 100;
    rules.ownedSize = 50;
    rules.ownedCounts = true;
    rules.allCounts = true;
    expectCorrected({1, 5000}, rules, 1024, 973, 4);
}

TEST(CorrectLimits, SizesAtTheEndOfTheRangeWrap)
{
    expectCorrected({0, 0}, anyone(INT64_MAX), 1024, 0, 2); // 5 % more is negative, and meets the floor
    expectCorrected({INT64_MAX, INT64_MAX}, anyone(INT64_MAX), INT64_MAX, INT64_MAX, 0);
    expectCorrected({INT64_MIN, INT64_MIN}, {}, 1024, 973, 2);
}

TEST(CorrectLimits, WhatIsCorrectedIsAccepted)
{
    std::mt19937_64 random(8);
    const auto size = [&] {
        return static_cast<std::int64_t>(random() >> (2 + random() % 62));
    };
    const auto typed = [&] {
        return static_cast<std::int64_t>(random()) >> (random() % 64);
    };
    for (int round = 0; round < 200'000; ++round) {
        const LimitRules rules{(random() & 1) != 0, size(), size(), (random() & 1) != 0, (random() & 1) != 0,
                               (random() & 1) != 0};
        const Limits limits{typed(), typed()};
        const char* const flaw = oracles::flawOf(correctLimits(limits, rules), limits, rules);
        ASSERT_EQ(flaw, nullptr) << flaw << ": typed " << limits.hard << ", " << limits.soft << ", sizes "
                                 << rules.objectSize << ", " << rules.ownedSize;
    }
}

} // namespace
