// Nothing is left behind by dialogs and list operations, except what is handed over.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/list_host.h"
#include "tests/support/nothing_left.h"
#include "tests/support/paths.h"
#include "tests/support/rule_memory.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <vector>

using namespace quota_settings;

namespace {

struct LeakTest : testing::Test {
    std::optional<RecordingStore> store{std::in_place};
    void* const staff = store->account("staff");
    void* const ann = store->account("ann");
    std::optional<ListHost> host{std::in_place};

    void expectNothingLeft(const std::function<void()>& round)
    {
        ::expectNothingLeft([&] {
            round();
            store->takeCalls(); // what is written down is no leak
        });
    }

    /// As the host does with records that it does not need any more. Those from the store are not on the heap.
    static void release(QuotaRule* rule, bool onHeap)
    {
        std::free(rule->path);
        std::free(rule->sid);
        if (onHeap) {
            std::free(rule);
        }
    }
};

} // namespace

TEST_F(LeakTest, OpeningAndCancelling)
{
    groupHas(*store, {ann});
    QuotaRule* const rule = newRule(staff);
    expectNothingLeft([=] {
        rule->inUse = QUOTA_IN_USE_UNKNOWN;
        whileOpen(rule, kAdd, clicks({IDC_QUOTA_GROUP_MEMBERS, IDC_QUOTA_ALL_FILES}));
    });
}

TEST_F(LeakTest, EditingToTheEnd)
{
    QuotaRule* const rule = newRule(staff);
    expectNothingLeft([=] { untilOk(rule, kEdit, limits(L"9K", L"8K")); });
}

TEST_F(LeakTest, RefusedAndCancelled)
{
    QuotaRule* const rule = newRule();
    expectNothingLeft([=] { untilRefused(rule, kAdd, limits(L"9", L"8"), clicks({})); });
}

TEST_F(LeakTest, MemberRecordsAreTheCallers)
{
    groupHas(*store, {ann, ann, ann});
    QuotaRule* const rule = newRule(staff);
    expectNothingLeft([=] {
        untilOk(rule, kAdd, clicks({IDC_QUOTA_GROUP_MEMBERS}));
        int members = 0;
        while (QuotaRule* const member = rule->next) {
            rule->next = member->next;
            release(member, true);
            ++members;
        }
        EXPECT_EQ(members, 3);
    });
}

TEST_F(LeakTest, FillingSortingAndDropping)
{
    for (int i = 0; i < 50; ++i) {
        store->put(L"C:\\a", i % 2 == 0 ? staff : nullptr, 1000 + i, 90, i);
    }
    initializeListCtrl2(host->object(), nullptr);
    expectNothingLeft([this] {
        fillUpListCtrl2(Paths{L"C:\\a"}, host->object());
        sortListCtrl2(host->object(), 1);
        sortListCtrl2(host->object(), 0);
        QuotaRule* rule = getDataModified2(host->object());
        host->select(-1);
        EXPECT_NE(dropFromListCtrl2(host->object()), 0);
        int dropped = 0;
        for (QuotaRule* next = nullptr; rule != nullptr; rule = next, ++dropped) {
            next = rule->next;
            release(rule, false);
        }
        EXPECT_GT(dropped, 0);
    });
}

TEST_F(LeakTest, RowsOfRecordsAbove4GiBThatTheHostDeletes)
{
    for (int i = 0; i < 50; ++i) {
        store->put(L"C:\\a", i % 2 == 0 ? staff : nullptr, 1000 + i, 90, i);
    }
    std::vector<QuotaRule*> given;
    const auto usual = store->answer.getQuotaList;
    store->answer.getQuotaList = [&](const wchar_t* folder) {
        QuotaRule* first = nullptr;
        for (const QuotaRule* rule = usual(folder); rule != nullptr; rule = rule->next) {
            QuotaRule* const copy = rule_memory::above4GiB(); // never at the same place again
            *copy = *rule;
            copy->next = first;
            first = copy;
            given.push_back(copy);
        }
        return first;
    };
    initializeListCtrl2(host->object(), nullptr);
    expectNothingLeft([&, this] {
        fillUpListCtrl2(Paths{L"C:\\a"}, host->object());
        EXPECT_EQ(host->rowCount(), 50);
        ListView_DeleteAllItems(host->list());
        for (QuotaRule* const rule : given) {
            release(rule, false);
        }
        given.clear();
    });
}

TEST_F(LeakTest, PreparingAgain)
{
    expectNothingLeft([this] {
        initializeListCtrl2(host->object(), nullptr);
        EXPECT_EQ(countItems2(host->object()), 0);
    });
}

TEST_F(LeakTest, AddingAndDropping)
{
    initializeListCtrl2(host->object(), nullptr);
    expectNothingLeft([this] {
        EXPECT_NE(Visit().ok().run([this] { return addToListCtrl2(host->object(), staff, Paths{L"C:\\a"}); }),
                  0);
        QuotaRule* const rule = getDataModified2(host->object());
        host->selectOnly({0});
        EXPECT_NE(dropFromListCtrl2(host->object()), 0);
        release(rule, true);
    });
}

TEST_F(LeakTest, AddingByNumber)
{
    initializeListCtrl2(host->object(), nullptr);
    expectNothingLeft([this] {
        EXPECT_NE(Visit().ok().run([this] {
            return addToListCtrl(host->window(), ListHost::kListId, nullptr, Paths{L"C:\\a"});
        }),
                  0);
        QuotaRule* const rule = getDataModified(host->window(), ListHost::kListId);
        host->selectOnly({0});
        EXPECT_NE(dropFromListCtrl(host->window(), ListHost::kListId), 0);
        release(rule, true);
    });
}

TEST_F(LeakTest, Conflicts)
{
    store->put(L"C:\\a", nullptr, 1000, 90, 0);
    initializeListCtrl2(host->object(), Paths{L"C:\\a"});
    expectNothingLeft([this] {
        EXPECT_NE(Visit().conflict().run(
                      [this] { return addToListCtrl2(host->object(), nullptr, Paths{L"C:\\a"}); }),
                  0);
    });
}

TEST_F(LeakTest, AFailedFolderSize)
{
    QuotaRule* const rule = newRule();
    expectNothingLeft([=, this] {
        store->raise("getRealSize", Fault::kCppException);
        whileOpen(rule, kAdd);
    });
}
