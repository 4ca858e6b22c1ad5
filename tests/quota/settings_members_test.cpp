// Copying a group's rule to its members.
#include "res/resource.h"
#include "tests/quota/quota_settings.h"
#include "tests/support/describe.h"
#include "tests/support/list_host.h"

#include <gmock/gmock.h>

#include <vector>

using namespace quota_settings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct SettingsMembersTest : testing::Test {
    RecordingStore store;
    void* const staff = store.account("staff");
    void* const ann = store.account("ann");
    void* const bob = store.account("bob");
    void* const cleo = store.account("cleo");
    QuotaRule* const rule = newRule(staff);

    void SetUp() override
    {
        groupHas(store, {ann, bob, cleo});
        folderHolds(store, 1000);
        accountOwns(store, 10);
    }
};

} // namespace

TEST_F(SettingsMembersTest, ChainsARecordForEachMember)
{
    const intptr_t result = untilOk(rule, kAdd, [](HWND dialog) {
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        typeLimits(dialog, L"8000", L"7000");
    });
    EXPECT_EQ(result, reinterpret_cast<intptr_t>(rule));
    EXPECT_THAT(chainTexts(rule),
                ElementsAre("staff C:\\data", "ann C:\\data", "bob C:\\data", "cleo C:\\data"));
    for (const QuotaRule* member = rule->next; member != nullptr; member = member->next) {
        EXPECT_EQ(member->type, QUOTA_RULE_FOR_ACCOUNT);
        EXPECT_EQ(member->hardLimit, 8000);
        EXPECT_EQ(member->softLimit, 7000);
        EXPECT_EQ(member->inUse, 10);
        EXPECT_NE(member->path, rule->path) << "each record owns its path";
        EXPECT_NE(member->path, member->prev->path);
    }
}

TEST_F(SettingsMembersTest, GivesEachMemberACopyOfItsSid)
{
    untilOk(rule, kAdd, [this](HWND dialog) {
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        store.takeCalls();
    });
    EXPECT_THAT(store.calls(),
                ElementsAre("sidDup ann", "sidDup bob", "sidDup cleo", "freeSidList [ann, bob, cleo]"));
    // The members' list is gone by now, the copies are not.
    EXPECT_THAT(chainTexts(rule),
                ElementsAre("staff C:\\data", "ann C:\\data", "bob C:\\data", "cleo C:\\data"));
}

TEST_F(SettingsMembersTest, AreAskedForUnderTheWaitCursor)
{
    int asked = 0;
    store.answer.enumerateGroupUsers = [&asked, answer = store.answer.enumerateGroupUsers](
                                           const wchar_t* server, const wchar_t* group, SidList* list) {
        ++asked;
        EXPECT_TRUE(showsWaitCursor());
        return answer(server, group, list);
    };
    whileOpen(rule, kAdd, [](HWND) { EXPECT_FALSE(showsWaitCursor()); });
    EXPECT_EQ(asked, 1);
}

TEST_F(SettingsMembersTest, TracksNewMembersWhenAsked)
{
    untilOk(rule, kAdd, [this](HWND dialog) {
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        click(dialog, IDC_QUOTA_NEW_MEMBERS);
        store.takeCalls();
    });
    EXPECT_THAT(store.calls(),
                ElementsAre("sidDup ann", "sidDup bob", "sidDup cleo", std::string("ODS ") + kTrackingLine,
                            "addToTrackList {staff C:\\data, ann C:\\data, bob C:\\data, cleo C:\\data}",
                            "freeSidList [ann, bob, cleo]"));
}

TEST_F(SettingsMembersTest, AccountsMembersForFilesChosen)
{
    untilOk(rule, kAdd, clicks({IDC_QUOTA_ALL_FILES, IDC_QUOTA_GROUP_MEMBERS}));
    ASSERT_NE(rule->next, nullptr);
    EXPECT_EQ(rule->next->inUse, 1000);
}

TEST_F(SettingsMembersTest, MakesNoRecordsUnlessAsked)
{
    untilOk(rule, kAdd);
    EXPECT_EQ(rule->next, nullptr);
}

TEST_F(SettingsMembersTest, MakesAndTracksNothingWhenTheChoiceIsTakenBack)
{
    untilOk(rule, kAdd, [](HWND dialog) {
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        click(dialog, IDC_QUOTA_NEW_MEMBERS);
        click(dialog, IDC_QUOTA_GROUP_MEMBERS);
        EXPECT_TRUE(isChecked(dialog, IDC_QUOTA_NEW_MEMBERS));
    });
    EXPECT_EQ(rule->next, nullptr);
    EXPECT_THAT(store.lines(), IsEmpty());
}

TEST_F(SettingsMembersTest, MakesNoRecordsWhenRefused)
{
    untilRefused(
        rule, kAdd,
        [this](HWND dialog) {
            click(dialog, IDC_QUOTA_GROUP_MEMBERS);
            click(dialog, IDC_QUOTA_NEW_MEMBERS);
            typeLimits(dialog, L"5", L"1");
            store.takeCalls();
        },
        [this](HWND) {
            EXPECT_EQ(rule->next, nullptr);
            EXPECT_THAT(store.calls(), IsEmpty());
        });
}

TEST_F(SettingsMembersTest, MakesNoRecordsWhenCancelled)
{
    whileOpen(rule, kAdd, clicks({IDC_QUOTA_GROUP_MEMBERS}));
    EXPECT_EQ(rule->next, nullptr);
}

TEST_F(SettingsMembersTest, ForgetsTheMembersOfTheLastDialog)
{
    untilOk(rule, kAdd, clicks({IDC_QUOTA_GROUP_MEMBERS}));
    store.answer.enumerateGroupUsers = [](const wchar_t*, const wchar_t*, SidList* list) {
        return list;
    };
    QuotaRule* const other = newRule(ann);
    untilOk(other, kAdd, [](HWND dialog) {
        EXPECT_FALSE(isEnabled(dialog, IDC_QUOTA_GROUP_MEMBERS));
        // Checked by a program, since a person cannot: there is no one to copy the rule to.
        SendDlgItemMessageW(dialog, IDC_QUOTA_GROUP_MEMBERS, BM_SETCHECK, BST_CHECKED, 0);
    });
    EXPECT_EQ(other->next, nullptr);
    EXPECT_EQ(store.openSidLists(), 0);
}

TEST_F(SettingsMembersTest, CopiesAThousandMembers)
{
    std::vector<const void*> crowd(1000, ann);
    groupHas(store, crowd);
    untilOk(rule, kAdd, clicks({IDC_QUOTA_GROUP_MEMBERS}));
    EXPECT_EQ(chainTexts(rule).size(), 1001u);
    EXPECT_EQ(chainTexts(rule).back(), "ann C:\\data");
}
