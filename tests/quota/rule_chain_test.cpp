#include "quota/rule_chain.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

/// The records of a chain from its first to its last, with every backward link checked.
std::vector<const QuotaRule*> walk(const QuotaRule* first)
{
    std::vector<const QuotaRule*> rules;
    const QuotaRule* previous = nullptr;
    for (const QuotaRule* rule = first; rule != nullptr; rule = rule->next) {
        EXPECT_EQ(rule->prev, previous);
        rules.push_back(rule);
        previous = rule;
    }
    return rules;
}

using Rules = std::vector<const QuotaRule*>;

TEST(ChainBuilder, LinksInTheOrderOfAppending)
{
    std::array<QuotaRule, 3> r{};
    r[0].prev = &r[2]; // old links are overwritten
    r[2].next = &r[0];
    ChainBuilder chain;
    chain.append(&r[0]);
    chain.append(nullptr);
    chain.append(&r[1]);
    chain.append(&r[2]);
    EXPECT_EQ(walk(chain.first()), (Rules{&r[0], &r[1], &r[2]}));
    EXPECT_EQ(chain.last(), &r[2]);
}

TEST(ChainBuilder, EmptyChain)
{
    ChainBuilder chain;
    chain.append(nullptr);
    EXPECT_EQ(chain.first(), nullptr);
    EXPECT_EQ(chain.last(), nullptr);
}

TEST(LinkOnTop, TheLastOneStandsFirst)
{
    std::array<QuotaRule, 4> r{};
    r[1].next = &r[2];
    const std::array<QuotaRule*, 2> lower{&r[1], &r[0]};
    QuotaRule* first = linkOnTop(lower, nullptr);
    EXPECT_EQ(walk(first), (Rules{&r[0], &r[1]}));
    const std::array<QuotaRule*, 2> upper{&r[2], &r[3]};
    first = linkOnTop(upper, first);
    EXPECT_EQ(walk(first), (Rules{&r[3], &r[2], &r[0], &r[1]}));
    EXPECT_EQ(linkOnTop({}, first), first);
    EXPECT_EQ(linkOnTop({}, nullptr), nullptr);
}

TEST(UnlinkRule, NeighboursCloseTheGap)
{
    std::array<QuotaRule, 5> r{};
    ChainBuilder chain;
    for (QuotaRule& rule : r) {
        chain.append(&rule);
    }
    unlinkRule(r[1]);
    unlinkRule(r[3]);
    EXPECT_EQ(walk(&r[0]), (Rules{&r[0], &r[2], &r[4]}));
    unlinkRule(r[0]);
    EXPECT_EQ(walk(&r[2]), (Rules{&r[2], &r[4]}));
    unlinkRule(r[4]);
    EXPECT_EQ(walk(&r[2]), (Rules{&r[2]}));
    unlinkRule(r[2]);
    EXPECT_EQ(r[0].next, &r[2]); // the links of what was taken out stay
}

} // namespace
