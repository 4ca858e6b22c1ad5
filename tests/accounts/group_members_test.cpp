// What the settings dialog has from the chooser: the servers that the last enumeration asked.
#include "res/resource.h"
#include "tests/accounts/chooser_fixture.h"
#include "tests/accounts/members_asked.h"

#include <gmock/gmock.h>

#include <cwchar>

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

class GroupMembersTest : public ChooserFixture {
protected:
    void enumerate()
    {
        searchServer();
        cancel();
        EXPECT_EQ(choose(), nullptr);
        threads.waitForAll();
        store.takeCalls();
    }

    void nameASecondServer()
    {
        store.answer.getDomainServerByName = [](const wchar_t*) {
            return _wcsdup(L"SECOND");
        };
    }
};

} // namespace

TEST_F(GroupMembersTest, AreAskedOfTheServersOfTheLastEnumerationInTheirOrder)
{
    nameASecondServer();
    enumerate();
    EXPECT_THAT(membersAsked(store), ElementsAre("enumerateGroupUsers null DOM\\staff null",
                                                 "enumerateGroupUsers SERVER DOM\\staff null",
                                                 "enumerateGroupUsers SECOND DOM\\staff null"));
}

TEST_F(GroupMembersTest, OfAllServersAreInOneList)
{
    nameASecondServer();
    enumerate();
    const std::vector<void*> found = {store.account("DOM\\ann"), store.account("DOM\\bob"),
                                      store.account("DOM\\carol")};
    store.answer.enumerateGroupUsers = [&, next = std::size_t{0}](const wchar_t*, const wchar_t*,
                                                                  SidList* list) mutable {
        SidList* const known = list != nullptr ? list : store.answer.createEmptySidList();
        return store.answer.appendToSidList(known, store.answer.sidDup(found[next++]));
    };
    QuotaRule* const rule = quota_settings::newRule(store.account("DOM\\staff"));
    quota_settings::untilOk(rule, quota_settings::kAdd,
                            [](HWND dialog) { click(dialog, IDC_QUOTA_GROUP_MEMBERS); });
    std::vector<std::string> members;
    for (const QuotaRule* member = rule->next; member != nullptr; member = member->next) {
        members.push_back(RecordingStore::nameOf(member->sid));
    }
    EXPECT_THAT(members, UnorderedElementsAre("DOM\\ann", "DOM\\bob", "DOM\\carol"));
    EXPECT_EQ(store.openSidLists(), 0);
}

TEST_F(GroupMembersTest, AServerThatWasNotThereIsNotAsked)
{
    enumerate();
    EXPECT_THAT(membersAsked(store), ElementsAre("enumerateGroupUsers null DOM\\staff null",
                                                 "enumerateGroupUsers SERVER DOM\\staff null"));
}

TEST_F(GroupMembersTest, AreNoneWhenAServerFaultsAndNoListIsFreedThatItMayHaveTaken)
{
    nameASecondServer();
    enumerate();
    store.answer.enumerateGroupUsers = [ann = store.account("DOM\\ann")](const wchar_t*, const wchar_t*,
                                                                         SidList* list) {
        return list != nullptr ? list : RecordingStore::makeSidList({ann});
    };
    for (const int failing : {1, 2, 3}) {
        for (const Fault fault : kEveryFault) {
            store.takeCalls();
            store.raise("enumerateGroupUsers", fault, failing);
            quota_settings::whileOpen(quota_settings::newRule(store.account("DOM\\staff")),
                                      quota_settings::kAdd, [this](HWND dialog) {
                                          EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_GROUP_MEMBERS));
                                          store.takeCalls();
                                      });
            EXPECT_THAT(store.calls(), testing::Not(testing::Contains(testing::StartsWith("freeSidList"))))
                << failing << ' ' << faultName(fault);
        }
    }
}
