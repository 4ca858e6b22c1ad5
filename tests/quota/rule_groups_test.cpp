#include "quota/rule_groups.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace {

using Numbers = std::vector<std::uint32_t>;

Numbers rulesOf(const RuleGroups& groups, std::uint32_t hash)
{
    Numbers rules;
    const std::uint32_t met = groups.find(hash, [&](std::uint32_t rule) {
        rules.push_back(rule);
        return false;
    });
    EXPECT_EQ(met, RuleGroups::kNone);
    return rules;
}

TEST(RuleGroups, RoomMadeBeforehandChangesNothing)
{
    constexpr std::uint32_t kMany = 1000;
    RuleGroups groups;
    groups.addOnTop(3, 0);
    groups.reserve(kMany);
    for (std::uint32_t i = 1; i < kMany; ++i) {
        groups.addOnTop(i % 500, i);
    }
    groups.reserve(1);
    EXPECT_EQ(rulesOf(groups, 3), (Numbers{503, 3, 0}));
    EXPECT_EQ(groups.size(499), 2u);
    EXPECT_EQ(groups.size(500), 0u);
}

TEST(RuleGroups, FromTheTopDown)
{
    RuleGroups groups;
    EXPECT_EQ(groups.addOnTop(7, 30), 1u);
    EXPECT_EQ(groups.addOnTop(7, 20), 2u);
    EXPECT_EQ(groups.addOnTop(8, 10), 1u);
    EXPECT_EQ(rulesOf(groups, 7), (Numbers{20, 30}));
    EXPECT_EQ(groups.size(7), 2u);
    EXPECT_EQ(groups.size(8), 1u);
}

TEST(RuleGroups, UnknownHashesHaveNoRules)
{
    RuleGroups groups;
    EXPECT_EQ(groups.size(0), 0u);
    EXPECT_TRUE(rulesOf(groups, 0).empty());
    groups.addOnTop(64, 1); // the same place in a small table as 0
    EXPECT_EQ(groups.size(0), 0u);
    EXPECT_TRUE(rulesOf(groups, 0).empty());
}

TEST(RuleGroups, StopsAtTheFirstThatMeetsTheCondition)
{
    RuleGroups groups;
    for (const std::uint32_t rule : {5u, 6u, 7u}) {
        groups.addOnTop(1, rule);
    }
    Numbers asked;
    EXPECT_EQ(groups.find(1,
                          [&](std::uint32_t rule) {
                              asked.push_back(rule);
                              return rule == 6;
                          }),
              6u);
    EXPECT_EQ(asked, (Numbers{7, 6}));
}

TEST(RuleGroups, ManyGroupsKeepTheirRulesWhileTheTableGrows)
{
    std::mt19937 random(15);
    std::map<std::uint32_t, Numbers> expected;
    RuleGroups groups;
    for (std::uint32_t rule = 0; rule < 20'000; ++rule) {
        // Few different lower bits, so that many hashes meet in one place.
        const std::uint32_t hash = static_cast<std::uint32_t>((random() % 3000) << 20 | random() % 4);
        Numbers& group = expected[hash];
        group.insert(group.begin(), rule);
        ASSERT_EQ(groups.addOnTop(hash, rule), group.size());
    }
    for (const auto& [hash, group] : expected) {
        ASSERT_EQ(rulesOf(groups, hash), group);
    }
}

} // namespace
