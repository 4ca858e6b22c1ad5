#include "host/rule_state.h"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <string>

using host::changedFolders;
using host::RuleExcerpt;
using host::stateOf;

namespace {

/// Rules in one chain, in the order given.
class Chain {
public:
    QuotaRule& add(const wchar_t* path, int64_t hard, int64_t soft)
    {
        m_paths.emplace_back(path);
        QuotaRule& rule = m_rules[m_count];
        rule.type = QUOTA_RULE_FOR_ANYONE;
        rule.path = m_paths.back().data();
        rule.hardLimit = hard;
        rule.softLimit = soft;
        if (m_count > 0) {
            m_rules[m_count - 1].next = &rule;
        }
        ++m_count;
        return rule;
    }
    const QuotaRule* first() const { return m_count == 0 ? nullptr : m_rules.data(); }

private:
    std::array<QuotaRule, 4> m_rules{};
    std::list<std::wstring> m_paths;
    size_t m_count = 0;
};

// S-1-1-0 and S-1-5-18
std::array<uint8_t, 12> everyone{1, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0};
std::array<uint8_t, 12> localSystem{1, 1, 0, 0, 0, 0, 0, 5, 18, 0, 0, 0};

} // namespace

TEST(RuleState, OfNoChainIsEmpty)
{
    EXPECT_TRUE(stateOf(nullptr).empty());
}

TEST(RuleState, DoesNotDependOnTheOrder)
{
    Chain one;
    one.add(L"C:\\a", 5000, 4000);
    one.add(L"C:\\b", 6000, 5000);
    one.add(L"C:\\a", 7000, 6000).sid = everyone.data();
    Chain other;
    other.add(L"C:\\a", 7000, 6000).sid = everyone.data();
    other.add(L"C:\\a", 5000, 4000);
    other.add(L"C:\\b", 6000, 5000);
    EXPECT_EQ(stateOf(one.first()), stateOf(other.first()));
}

TEST(RuleState, DoesNotDependOnTheSpellingOfAFolder)
{
    Chain one;
    one.add(L"C:\\Data", 5000, 4000);
    Chain other;
    other.add(L"c:/data", 5000, 4000);
    EXPECT_EQ(stateOf(one.first()), stateOf(other.first()));
}

TEST(RuleState, TellsEveryDifference)
{
    Chain base;
    base.add(L"C:\\a", 5000, 4000);
    Chain hard;
    hard.add(L"C:\\a", 5001, 4000);
    Chain soft;
    soft.add(L"C:\\a", 5000, 4001);
    Chain used;
    used.add(L"C:\\a", 5000, 4000).inUse = 1;
    Chain account;
    account.add(L"C:\\a", 5000, 4000).sid = everyone.data();
    Chain folder;
    folder.add(L"C:\\b", 5000, 4000);
    Chain twice;
    twice.add(L"C:\\a", 5000, 4000);
    twice.add(L"C:\\a", 5000, 4000);
    for (const Chain* other : {&hard, &soft, &used, &account, &folder, &twice}) {
        EXPECT_NE(stateOf(base.first()), stateOf(other->first()));
    }
}

TEST(RuleState, ComparesAccountsByTheirBytes)
{
    std::array<uint8_t, 12> copy = everyone;
    Chain one;
    one.add(L"C:\\a", 5000, 4000).sid = everyone.data();
    Chain same;
    same.add(L"C:\\a", 5000, 4000).sid = copy.data();
    Chain other;
    other.add(L"C:\\a", 5000, 4000).sid = localSystem.data();
    EXPECT_EQ(stateOf(one.first()), stateOf(same.first()));
    EXPECT_NE(stateOf(one.first()), stateOf(other.first()));
}

TEST(ChangedFolders, AreThoseWithOtherRulesAndThoseThatOnlyOneStateHas)
{
    Chain before;
    before.add(L"C:\\Same", 5000, 4000);
    before.add(L"C:\\Other", 5000, 4000);
    before.add(L"C:\\Gone", 5000, 4000);
    Chain after;
    after.add(L"C:\\New", 5000, 4000);
    after.add(L"C:\\Other", 6000, 4000);
    after.add(L"C:/same", 5000, 4000);
    const std::set<std::wstring> expected{L"c:\\gone", L"c:\\new", L"c:\\other"};
    EXPECT_EQ(changedFolders(stateOf(before.first()), stateOf(after.first())), expected);
    EXPECT_EQ(changedFolders(stateOf(after.first()), stateOf(before.first())), expected);
    EXPECT_TRUE(changedFolders(stateOf(after.first()), stateOf(after.first())).empty());
}

TEST(RuleExcerpt, HasTheRulesOfItsFoldersInTheirOrderAndLeavesTheChainAlone)
{
    Chain chain;
    QuotaRule& first = chain.add(L"C:\\a", 1000, 1);
    chain.add(L"C:\\b", 2000, 2);
    QuotaRule& third = chain.add(L"c:/A", 3000, 3);
    third.sid = everyone.data();
    chain.add(L"C:\\c", 4000, 4);
    const std::array<QuotaRule*, 2> links{first.next, third.next};

    const RuleExcerpt excerpt(chain.first(), {L"c:\\a"});
    const QuotaRule* one = excerpt.first();
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(one->hardLimit, 1000);
    EXPECT_EQ(one->prev, nullptr);
    const QuotaRule* two = one->next;
    ASSERT_NE(two, nullptr);
    EXPECT_EQ(two->hardLimit, 3000);
    EXPECT_EQ(two->sid, everyone.data());
    EXPECT_EQ(two->path, third.path);
    EXPECT_EQ(two->prev, one);
    EXPECT_EQ(two->next, nullptr);
    EXPECT_EQ((std::array{first.next, third.next}), links);
}

TEST(RuleExcerpt, MayBeEmpty)
{
    Chain chain;
    chain.add(L"C:\\a", 1000, 1);
    EXPECT_EQ(RuleExcerpt(chain.first(), {L"c:\\b"}).first(), nullptr);
    EXPECT_EQ(RuleExcerpt(chain.first(), {}).first(), nullptr);
    EXPECT_EQ(RuleExcerpt(nullptr, {L"c:\\a"}).first(), nullptr);
}
