// Filling beside the plain way to say it: a rule is shown when no row has the same limits, folder and account.
#include "tests/quota/rule_list_test.h"

#include "tests/support/message_watch.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include <commctrl.h>

namespace {

struct RuleFillTest : RuleListTest {
    void SetUp() override { prepare(); }

    /// The records of all rows, from the top, form one chain.
    void expectChained()
    {
        const QuotaRule* previous = nullptr;
        for (int row = 0; row < host.rowCount(); ++row) {
            const QuotaRule* rule = host.record(row);
            ASSERT_EQ(rule->prev, previous) << row;
            ASSERT_TRUE(previous == nullptr || previous->next == rule) << row;
            previous = rule;
        }
        ASSERT_TRUE(previous == nullptr || previous->next == nullptr);
    }
};

TEST_F(RuleFillTest, RandomRulesWithRepetitions)
{
    std::mt19937 random(1);
    std::vector<void*> accounts{nullptr};
    for (int i = 0; i < 100; ++i) {
        accounts.push_back(store.account("account" + std::to_string(i)));
    }
    const wchar_t* const folders[] = {L"C:\\a", L"C:\\b", L"c:\\A", L"C:\\c"};
    struct Said {
        std::wstring path;
        void* account;
        int64_t hardLimit;
        int64_t softLimit;
        bool operator==(const Said&) const = default;
    };
    std::vector<Said> expected;
    for (const wchar_t* folder : folders) {
        std::vector<Said> shown;
        for (int i = 0; i < 400; ++i)
        { // few limits, so that groups become larger than what is compared directly
            const Said said{folder, accounts[random() % accounts.size()], 2048 + random() % 2 * 1024, 1024};
            store.put(folder, said.account, said.hardLimit, said.softLimit, i);
            if (std::find(expected.begin(), expected.end(), said) == expected.end()) {
                expected.push_back(said);
            }
        }
    }
    const Paths paths{folders[0], folders[1], folders[2], folders[3]};
    fill(paths);

    ASSERT_EQ(static_cast<std::size_t>(host.rowCount()), expected.size());
    for (int row = 0; row < host.rowCount(); ++row) {
        const Said& said = expected[expected.size() - 1 - static_cast<std::size_t>(row)];
        const QuotaRule& rule = *host.record(row);
        ASSERT_EQ(rule.path, said.path);
        ASSERT_EQ(RecordingStore::nameOf(rule.sid), RecordingStore::nameOf(said.account));
        ASSERT_EQ(rule.hardLimit, said.hardLimit);
    }
    expectChained();

    fill(paths);
    EXPECT_EQ(static_cast<std::size_t>(host.rowCount()), expected.size());
    expectChained();
}

TEST_F(RuleFillTest, OnlyWhatIsNewIsAddedInWhateverOrderItComes)
{
    constexpr int kAccounts = 40; // of one folder, with one limit: more than what is compared directly
    std::vector<void*> accounts;
    for (int i = 0; i < kAccounts; ++i) {
        accounts.push_back(store.account("account" + std::to_string(i)));
    }
    struct Said {
        int64_t hardLimit;
        void* account;
    };
    std::vector<Said> said;
    for (const int64_t hardLimit : {2048, 4096, 8192}) {
        for (void* account : accounts) {
            said.push_back({hardLimit, account});
        }
    }
    std::vector<Said> given = said;
    store.answer.getQuotaList = [&](const wchar_t* folder) {
        std::vector<QuotaRule*> rules;
        for (const Said& rule : given) {
            rules.push_back(RecordingStore::makeRule(folder, rule.account, rule.hardLimit, 1024, 0));
        }
        return RecordingStore::linked(rules);
    };
    const Paths paths{L"C:\\a"};
    fill(paths);
    int rows = static_cast<int>(said.size());
    ASSERT_EQ(host.rowCount(), rows);

    const auto fillAgain = [&](const char* how, int added) {
        SCOPED_TRACE(how);
        fill(paths);
        rows += added;
        ASSERT_EQ(host.rowCount(), rows);
        for (int row = 0; row < added; ++row) {
            ASSERT_GE(host.record(row)->hardLimit, 10'000) << row;
        }
        expectChained();
    };
    fillAgain("as they were", 0);
    std::ranges::reverse(given);
    fillAgain("upside down", 0);
    given = said;
    given.erase(given.begin() + 30, given.begin() + 70);
    fillAgain("some gone", 0);
    given = said;
    for (const int place : {100, 57, 56, 10, 0}) {
        given.insert(given.begin() + place, {10'000 + place, accounts[0]});
    }
    fillAgain("new ones in between", 5);
    fillAgain("new ones in between, which stand on top now", 0);
    std::vector<Said> each = given;
    given.insert(given.end(), each.begin(), each.end());
    fillAgain("each twice", 0);
    std::mt19937 random(2);
    std::ranges::shuffle(given, random);
    given.push_back({20'000, accounts[1]});
    fillAgain("in no order", 1);
    sort(2);
    fillAgain("in a list sorted since", 0);
}

TEST_F(RuleFillTest, AccountsAreComparedOnlyWhereLimitsAndFolderAgree)
{
    void* alice = store.account("alice");
    void* bob = store.account("bob");
    store.put(L"C:\\a", alice, 2048, 1024, 0);
    store.put(L"C:\\a", bob, 4096, 1024, 0);
    store.put(L"C:\\b", bob, 2048, 1024, 0);
    const Paths paths{L"C:\\a", L"C:\\b"};
    fill(paths);
    EXPECT_EQ(store.count("sidcmp"), 0);
    EXPECT_EQ(host.rowCount(), 3);
}

TEST_F(RuleFillTest, AccountsAreComparedInTheOrderOfTheRows)
{
    for (const char* name : {"alice", "bob", "carol"}) {
        store.put(L"C:\\a", store.account(name), 2048, 1024, 0);
    }
    const Paths paths{L"C:\\a"};
    fill(paths);
    store.takeCalls();
    fill(paths);
    EXPECT_THAT(store.calls(),
                testing::ElementsAre("getQuotaList C:\\a", "sidcmp carol alice", "sidcmp bob alice",
                                     "sidcmp alice alice", "sidcmp carol bob", "sidcmp bob bob",
                                     "sidcmp carol carol"));
}

TEST_F(RuleFillTest, AListThatShowsEverythingIsNotRedrawn)
{
    store.put(L"C:\\a", nullptr, 2048, 1024, 0);
    const Paths paths{L"C:\\a"};
    int switched = 0;
    const MessageWatch watch(
        host.list(), [&](UINT message, WPARAM, LPARAM) { switched += message == WM_SETREDRAW ? 1 : 0; });
    fill(paths);
    EXPECT_EQ(switched, 2);
    fill(paths);
    EXPECT_EQ(switched, 2);
}

TEST_F(RuleFillTest, ListThatSortsByItselfIsChainedInItsOwnOrder)
{
    ListHost sorting(LVS_SORTASCENDING);
    initializeListCtrl2(sorting.object(), nullptr);
    for (const char* name : {"bob", "carol", "alice"}) {
        store.put(L"C:\\a", store.account(name), 2048, 1024, 0);
    }
    const Paths paths{L"C:\\a"};
    fillUpListCtrl2(paths, sorting.object());
    std::vector<std::string> names;
    for (const QuotaRule* rule = sorting.record(0); rule != nullptr; rule = rule->next) {
        names.push_back(RecordingStore::nameOf(rule->sid));
    }
    EXPECT_THAT(names, testing::ElementsAre("alice", "bob", "carol"));
}

} // namespace
