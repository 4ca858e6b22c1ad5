#include "quota/rule_groups.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace {

std::vector<const QuotaRule*> rulesOf(const RuleGroups& groups, std::uint64_t hash)
{
    std::vector<const QuotaRule*> rules;
    const bool met = groups.any(hash, [&](const QuotaRule& rule) {
        rules.push_back(&rule);
        return false;
    });
    EXPECT_FALSE(met);
    return rules;
}

TEST(RuleGroups, RoomMadeBeforehandChangesNothing)
{
    constexpr std::uint64_t kMany = 1000;
    std::vector<QuotaRule> rules(kMany);
    RuleGroups groups;
    groups.addOnTop(3, rules[0]);
    groups.reserve(kMany);
    for (std::uint64_t i = 1; i < kMany; ++i) {
        groups.addOnTop(i % 500, rules[i]);
    }
    EXPECT_EQ(rulesOf(groups, 3), (std::vector<const QuotaRule*>{&rules[503], &rules[3], &rules[0]}));
    EXPECT_EQ(groups.size(499), 2u);
    EXPECT_EQ(groups.size(500), 0u);
}

TEST(RuleGroups, FromTheTopDown)
{
    QuotaRule rules[3] = {};
    RuleGroups groups;
    EXPECT_EQ(groups.addOnTop(7, rules[0]), 1u);
    EXPECT_EQ(groups.addOnTop(7, rules[1]), 2u);
    EXPECT_EQ(groups.addOnTop(8, rules[2]), 1u);
    EXPECT_EQ(rulesOf(groups, 7), (std::vector<const QuotaRule*>{&rules[1], &rules[0]}));
    EXPECT_EQ(groups.size(7), 2u);
    EXPECT_EQ(groups.size(8), 1u);
}

TEST(RuleGroups, UnknownHashesHaveNoRules)
{
    QuotaRule rule{};
    RuleGroups groups;
    EXPECT_EQ(groups.size(0), 0u);
    EXPECT_TRUE(rulesOf(groups, 0).empty());
    groups.addOnTop(64, rule); // the same place in a small table as 0
    EXPECT_EQ(groups.size(0), 0u);
    EXPECT_TRUE(rulesOf(groups, 0).empty());
}

TEST(RuleGroups, StopsAtTheFirstThatMeetsTheCondition)
{
    QuotaRule rules[3] = {};
    RuleGroups groups;
    for (QuotaRule& rule : rules) {
        groups.addOnTop(1, rule);
    }
    int asked = 0;
    EXPECT_TRUE(groups.any(1, [&](const QuotaRule& rule) {
        ++asked;
        return &rule == &rules[1];
    }));
    EXPECT_EQ(asked, 2);
}

TEST(RuleGroups, ManyGroupsKeepTheirRulesWhileTheTableGrows)
{
    std::vector<QuotaRule> rules(20'000);
    std::mt19937_64 random(15);
    std::map<std::uint64_t, std::vector<const QuotaRule*>> expected;
    RuleGroups groups;
    for (QuotaRule& rule : rules) {
        // Few different low halves, so that many hashes meet in one place.
        const std::uint64_t hash = (random() % 3000) << 32 | random() % 4;
        auto& group = expected[hash];
        group.insert(group.begin(), &rule);
        ASSERT_EQ(groups.addOnTop(hash, rule), group.size());
    }
    for (const auto& [hash, group] : expected) {
        ASSERT_EQ(rulesOf(groups, hash), group);
    }
}

} // namespace
