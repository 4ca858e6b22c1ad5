#include "host/rule_state.h"

#include <gtest/gtest.h>

#include <array>
#include <list>
#include <string>

using host::RuleChanges;
using host::RuleExcerpt;

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

TEST(RuleChanges, ThereAreNoneAtFirst)
{
    const RuleChanges changes;
    EXPECT_FALSE(changes.any());
    EXPECT_TRUE(changes.folders().empty());
}

TEST(RuleChanges, AChangeThatIsTakenBackLeavesNone)
{
    Chain chain;
    const QuotaRule& before = chain.add(L"C:\\Data", 5000, 4000);
    const QuotaRule& after = chain.add(L"C:\\Data", 6000, 4000);
    // Another record, another spelling of the folder: the same rule all the same.
    const QuotaRule& again = chain.add(L"c:/data", 5000, 4000);
    RuleChanges changes;
    changes.wentOut(before);
    changes.cameIn(after);
    EXPECT_TRUE(changes.any());
    EXPECT_TRUE(changes.in(L"c:\\data"));
    changes.wentOut(after);
    changes.cameIn(again);
    EXPECT_FALSE(changes.any());
    EXPECT_FALSE(changes.in(L"c:\\data"));
}

TEST(RuleChanges, EveryDifferenceCounts)
{
    Chain base;
    const QuotaRule& rule = base.add(L"C:\\a", 5000, 4000);
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
    for (const Chain* other : {&hard, &soft, &used, &account, &folder}) {
        RuleChanges changes;
        changes.wentOut(rule);
        changes.cameIn(*other->first());
        EXPECT_TRUE(changes.any());
    }
    RuleChanges twice;
    twice.cameIn(rule);
    twice.cameIn(rule);
    twice.wentOut(rule);
    EXPECT_TRUE(twice.any());
}

TEST(RuleChanges, ComparesAccountsByTheirBytes)
{
    std::array<uint8_t, 12> copy = everyone;
    Chain chain;
    QuotaRule& one = chain.add(L"C:\\a", 5000, 4000);
    one.sid = everyone.data();
    QuotaRule& same = chain.add(L"C:\\a", 5000, 4000);
    same.sid = copy.data();
    QuotaRule& other = chain.add(L"C:\\a", 5000, 4000);
    other.sid = localSystem.data();
    RuleChanges changes;
    changes.wentOut(one);
    changes.cameIn(same);
    EXPECT_FALSE(changes.any());
    changes.wentOut(one);
    changes.cameIn(other);
    EXPECT_TRUE(changes.any());
}

TEST(RuleChanges, AreToldAndForgottenByFolder)
{
    Chain chain;
    RuleChanges changes;
    changes.wentOut(chain.add(L"C:\\Gone", 5000, 4000));
    changes.cameIn(chain.add(L"C:/New", 5000, 4000));
    EXPECT_EQ(changes.folders(), (std::set<std::wstring>{L"c:\\gone", L"c:\\new"}));
    changes.forget(L"c:\\gone");
    EXPECT_EQ(changes.folders(), std::set<std::wstring>{L"c:\\new"});
    changes.forget();
    EXPECT_FALSE(changes.any());
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
