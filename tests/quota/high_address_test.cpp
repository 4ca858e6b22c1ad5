// Records above 4 GiB, which do not fit into the 32 bits that carry them.
#include "tests/quota/rule_list_test.h"

#include "res/resource.h"
#include "tests/support/rule_memory.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <set>

using namespace quota_settings;
using testing::ElementsAre;

namespace {

QuotaRule* raised(const QuotaRule& rule)
{
    QuotaRule* const copy = rule_memory::above4GiB();
    *copy = rule;
    return copy;
}

struct HighAddressTest : RuleListTest {
    void* const alice = store.account("alice");

    void SetUp() override
    {
        const auto usual = store.answer.getQuotaList;
        store.answer.getQuotaList = [usual](const wchar_t* folder) {
            std::vector<QuotaRule*> copies;
            for (const QuotaRule* rule = usual(folder); rule != nullptr; rule = rule->next) {
                copies.push_back(raised(*rule));
            }
            return RecordingStore::linked(copies);
        };
        prepare();
    }

    void fillThree()
    {
        store.put(L"C:\\c", nullptr, 4096, 3072, 30);
        store.put(L"C:\\c", alice, 8192, 3072, 20);
        show(L"C:\\c", nullptr, 16384, 3072, 10);
    }

    static bool isInUse(UINT_PTR address)
    {
        MEMORY_BASIC_INFORMATION memory{};
        return VirtualQuery(reinterpret_cast<void*>(address), &memory, sizeof memory) != 0 &&
               memory.State == MEM_COMMIT;
    }

    /// All records of the list, from its chain.
    std::vector<QuotaRule*> records()
    {
        std::vector<QuotaRule*> all;
        for (QuotaRule* rule = chain(); rule != nullptr; rule = rule->next) {
            all.push_back(rule);
        }
        return all;
    }
};

} // namespace

TEST_F(HighAddressTest, ItemDataIsAStandInThatIsNoAddress)
{
    fillThree();
    std::set<LPARAM> seen;
    for (int row = 0; row < 3; ++row) {
        const auto data = static_cast<UINT_PTR>(host.data(row));
        EXPECT_EQ(data >> 32, 0u);
        EXPECT_NE(data, 0u);
        EXPECT_FALSE(isInUse(data));
        EXPECT_TRUE(seen.insert(host.data(row)).second);
    }
}

TEST_F(HighAddressTest, TheChainIsMadeOfTheRecordsThemselves)
{
    fillThree();
    EXPECT_THAT(chained(), ElementsAre("Anyone C:\\c", "alice C:\\c", "Anyone C:\\c"));
    for (const QuotaRule* const rule : records()) {
        EXPECT_TRUE(rule_memory::isAbove4GiB(rule));
    }
    EXPECT_THAT(host.column(3), ElementsAre("10 ", "20 ", "30 "));
}

TEST_F(HighAddressTest, FillsNothingTwice)
{
    fillThree();
    fill({L"C:\\c"});
    EXPECT_EQ(host.rowCount(), 3);
}

TEST_F(HighAddressTest, Edits)
{
    fillThree();
    host.selectOnly({1});
    EXPECT_TRUE(edit(Visit().ok(limits(L"2000", L"1500"))));
    EXPECT_EQ(host.row(1), "alice|2000 |1500 |20 |01%|C:\\c");
    EXPECT_EQ(records().at(1)->hardLimit, 2000);
}

TEST_F(HighAddressTest, Drops)
{
    fillThree();
    EXPECT_TRUE(drop({1}));
    EXPECT_THAT(chained(), ElementsAre("Anyone C:\\c", "Anyone C:\\c"));
    EXPECT_THAT(host.column(3), ElementsAre("10 ", "30 "));
}

TEST_F(HighAddressTest, Sorts)
{
    fillThree();
    sort(5);
    sort(3);
    sort(3);
    EXPECT_THAT(host.column(3), ElementsAre("30 ", "20 ", "10 "));
    EXPECT_EQ(records().at(0)->inUse, 30);
}

TEST_F(HighAddressTest, EditsCells)
{
    fillThree();
    NMLVDISPINFOW notification{};
    notification.hdr.code = LVN_ENDLABELEDITW;
    notification.item.iItem = 2;
    notification.item.iSubItem = 2;
    wchar_t text[] = L"5K";
    notification.item.pszText = text;
    EXPECT_EQ(hookNotify(host.window(), ListHost::kListId, &notification.hdr), 1);
    EXPECT_EQ(records().at(2)->softLimit, 5120);
    EXPECT_EQ(records().at(2)->hardLimit, 5120);
}

TEST_F(HighAddressTest, AddsWithMembersEditsAndDrops)
{
    const rule_memory::LibraryRecords above(rule_memory::above4GiB);
    fillThree();
    void* const staff = store.account("staff");
    groupHas(store, {alice, store.account("bob")});
    const auto choose = [](HWND dialog) {
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        typeLimits(dialog, L"10K", L"5K");
    };
    EXPECT_FALSE(add(staff, {L"C:\\new", L"C:\\other"}, Visit().ok(choose).cancel()));
    EXPECT_THAT(host.rows(2), ElementsAre("bob|10240 ", "alice|10240 ", "staff|10240 ", "Anyone|16384 ",
                                          "alice|8192 ", "Anyone|4096 "));
    ASSERT_EQ(records().size(), 6u);
    for (const QuotaRule* const rule : records()) {
        EXPECT_TRUE(rule_memory::isAbove4GiB(rule));
    }
    EXPECT_THAT(chained(), ElementsAre("bob C:\\new", "alice C:\\new", "staff C:/new", "Anyone C:\\c",
                                       "alice C:\\c", "Anyone C:\\c"));
    EXPECT_TRUE(drop({0, 2, 4}));
    EXPECT_THAT(chained(), ElementsAre("alice C:\\new", "Anyone C:\\c", "Anyone C:\\c"));
}

TEST_F(HighAddressTest, KnowsConflicts)
{
    fillThree();
    EXPECT_TRUE(add(alice, {L"c:/C"}, Visit().conflict()));
    EXPECT_EQ(host.rowCount(), 3);
}

TEST_F(HighAddressTest, TheDialogEndsWithTheStandIn)
{
    QuotaRule* const rule = raised(*newRule());
    const intptr_t result = untilOk(rule, kAdd);
    EXPECT_GT(result, 0);
    EXPECT_EQ(static_cast<UINT_PTR>(result) >> 32, 0u);
    EXPECT_NE(static_cast<DWORD>(result), static_cast<DWORD>(-1));
    EXPECT_FALSE(isInUse(static_cast<UINT_PTR>(result)));
    EXPECT_EQ(untilOk(rule, kEdit), result) << "the same record has the same stand-in";
}

TEST_F(HighAddressTest, ALowRecordIsItsOwnValue)
{
    QuotaRule* const rule = newRule();
    ASSERT_FALSE(rule_memory::isAbove4GiB(rule));
    EXPECT_EQ(untilOk(rule, kAdd), reinterpret_cast<intptr_t>(rule));
}

TEST_F(HighAddressTest, ARecordBelow4GiBWithItsTopBitSetIsItsOwnValueToo)
{
    QuotaRule* const rule = rule_memory::between2And4GiB();
    *rule = *newRule();
    ASSERT_LT(static_cast<int>(reinterpret_cast<UINT_PTR>(rule)), 0);
    EXPECT_EQ(untilOk(rule, kAdd), reinterpret_cast<intptr_t>(rule));
    store.answer.getQuotaList = [rule](const wchar_t*) {
        return rule;
    };
    fill({L"C:\\data"});
    EXPECT_EQ(host.record(0), rule);
    EXPECT_EQ(chain(), rule);
}

TEST_F(HighAddressTest, HighAndLowRecordsGoTogether)
{
    store.answer.getQuotaList = [this](const wchar_t* folder) {
        return RecordingStore::linked({raised(*RecordingStore::makeRule(folder, nullptr, 100, 1, 0)),
                                       RecordingStore::makeRule(folder, alice, 100, 1, 0)});
    };
    fill({L"C:\\c"});
    EXPECT_FALSE(rule_memory::isAbove4GiB(records().at(0)));
    EXPECT_TRUE(rule_memory::isAbove4GiB(records().at(1)));
    EXPECT_EQ(host.record(0), records().at(0));
}

TEST_F(HighAddressTest, ThousandsHaveStandInsOfTheirOwn)
{
    constexpr int kMany = 3000;
    for (int i = kMany; i > 0; --i) {
        store.put(L"C:\\c", nullptr, 99 + i, 1, 0);
    }
    fill({L"C:\\c"});
    std::set<LPARAM> seen;
    for (int row = 0; row < kMany; ++row) {
        seen.insert(host.data(row));
    }
    EXPECT_EQ(seen.size(), static_cast<size_t>(kMany));
    EXPECT_EQ(records().size(), static_cast<size_t>(kMany));
    EXPECT_EQ(records().back()->hardLimit, 100 + kMany - 1);
}

TEST_F(HighAddressTest, RowsKeepTheirRecordsHoweverManyOthersComeAndGo)
{
    fillThree();
    const std::vector<QuotaRule*> before = records();
    std::set<LPARAM> kept{host.data(0), host.data(1), host.data(2)};
    ListHost other;
    initializeListCtrl2(other.object(), nullptr);
    for (int i = 0; i < 300; ++i) {
        store.put(L"C:\\busy", nullptr, 100 + i, 1, 0);
    }
    for (int reload = 0; reload < 50; ++reload) {
        fillUpListCtrl2(Paths{L"C:\\busy"}, other.object());
        ASSERT_EQ(other.rowCount(), 300);
        for (int row = 0; row < 300; ++row) {
            ASSERT_FALSE(kept.contains(other.data(row)));
        }
        ListView_DeleteAllItems(other.list()); // a host may do it by itself
        store.takeCalls();
    }
    EXPECT_EQ(records(), before);
}

TEST_F(HighAddressTest, ARowThatComesBackAfterThousandsOfOthersHasNoRecord)
{
    fillThree();
    const LPARAM kept = host.data(1);
    const LPARAM briefly = host.data(2);
    ListView_DeleteItem(host.list(), 2);
    host.addRow(briefly, {L"back at once"});
    EXPECT_EQ(records().size(), 3u);
    ListView_DeleteItem(host.list(), 1);
    ListHost other;
    initializeListCtrl2(other.object(), nullptr);
    for (int i = 0; i < 300; ++i) {
        store.put(L"C:\\busy", nullptr, 100 + i, 1, 0);
    }
    for (int reload = 0; reload < 50; ++reload) {
        initializeListCtrl2(other.object(), Paths{L"C:\\busy"});
        store.takeCalls();
    }
    host.addRow(kept, {L"too late"});
    EXPECT_EQ(records().size(), 2u) << "of three rows";
    host.selectOnly({2});
    EXPECT_NE(editFromListCtrl2(host.object()), 0) << "nothing to edit";
    EXPECT_TRUE(drop());
    EXPECT_EQ(host.rowCount(), 2);
}
