// Manage Administrative Accounts, with the account chooser as its entry dialog.
#include "corvane.h"
#include "res/resource.h"
#include "tests/policies/editor_visit.h"
#include "tests/support/hidden_dialog.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct AdministrativeAccountsTest : testing::Test {
    AdministrativeAccountsTest()
    {
        visit.heeded = {"MgrAccounts", "getAccountBySidW"}; // not those of the chooser
        store.answer.getSidByNameW = [this](const wchar_t* name) {
            const std::wstring_view wanted = name;
            return store.answer.sidDup(wanted == L"jane"    ? jane
                                       : wanted == L"joe"   ? joe
                                       : wanted == L"ghost" ? ghost
                                                            : nullptr);
        };
    }

    PolicyStore store;
    EditorVisit visit{store, editMgrAccounts, "Choose subject"};
    void* jane = store.account("OFFICE\\jane");
    void* joe = store.account("OFFICE\\joe");
    void* ghost = store.unknownAccount();
};

} // namespace

TEST_F(AdministrativeAccountsTest, AddsTheNameOfTheChosenAccount)
{
    store.putAccount(L"old");
    visit.add()
        .chooseByName(L"jane")
        .calls({"getAccountBySidW OFFICE\\jane 128", "addToMgrAccounts OFFICE\\jane"})
        .rows({"OFFICE\\jane", "old"})
        .data({1, 0})
        .ok();
    EXPECT_THAT(visit.takeCalls(), ElementsAre("storeMgrAccounts", "applyMgrAccounts", "freeMgrAccounts"));
    EXPECT_THAT(store.accounts.present(), ElementsAre(L"old", L"OFFICE\\jane"));
}

TEST_F(AdministrativeAccountsTest, AnAccountMayBeListedTwice)
{
    visit.add().chooseByName(L"jane").add().chooseByName(L"jane").ok();
    EXPECT_THAT(store.accounts.present(), ElementsAre(L"OFFICE\\jane", L"OFFICE\\jane"));
}

TEST_F(AdministrativeAccountsTest, AnyoneAndCancelAddNothing)
{
    visit.add().chooseByName(L"Anyone").calls({}).rows({}).add().chooseNobody().calls({}).rows({}).cancel();
}

TEST_F(AdministrativeAccountsTest, AnAccountWithoutANameAddsNothing)
{
    visit.add().chooseByName(L"ghost").rows({}).cancel();
    EXPECT_THAT(store.accounts.present(), IsEmpty());
}

TEST_F(AdministrativeAccountsTest, AnEditToAnAccountWithoutANameKeepsTheName)
{
    store.putAccount(L"a");
    visit.edit(0)
        .chooseByName(L"ghost")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(visit.takeCalls(),
                        ElementsAre("getMgrAccounts 0", testing::StartsWith("getAccountBySidW"),
                                    "updateMgrAccounts 0 a"));
            EXPECT_THAT(list.rows(), ElementsAre("a"));
        })
        .cancel();
}

TEST_F(AdministrativeAccountsTest, ADoubleClickReplacesTheName)
{
    store.putAccount(L"a");
    store.putAccount(L"b");
    visit
        .list([this](HWND, const ListView& list) {
            list.selectOnly({0});
            store.takeCalls();
            list.doubleClick();
        })
        .chooseByName(L"joe")
        .calls({"getMgrAccounts 1", "getAccountBySidW OFFICE\\joe 128", "updateMgrAccounts 1 OFFICE\\joe"})
        .rows({"OFFICE\\joe", "a"})
        .data({1, 0})
        .cancel();
    EXPECT_THAT(visit.takeCalls(), ElementsAre("freeMgrAccounts"));
}

TEST_F(AdministrativeAccountsTest, ACancelledEditHandsTheStoreItsOwnStringBack)
{
    store.putAccount(L"a");
    store.putAccount(L"b");
    std::vector<const void*> updates;
    store.answer.updateMgrAccounts = [&](uint32_t index, const wchar_t* name) {
        updates.push_back(name);
        store.accounts.update(index, name);
    };
    const void* const own = store.accounts.get(1);
    visit.edit(0)
        .chooseNobody()
        .calls({"getMgrAccounts 1", "updateMgrAccounts 1 b"})
        .rows({"b", "a"})
        .data({1, 0})
        .edit(0)
        .chooseByName(L"Anyone")
        .rows({"b", "a"})
        .ok();
    EXPECT_THAT(updates, ElementsAre(own, own));
}

TEST_F(AdministrativeAccountsTest, AChooserThatCannotBeShownHasChosenNothing)
{
    visit.add()
        .chooseByName(L"jane")
        .list([this](HWND dialog, const ListView& list) {
            const HiddenDialog chooser(IDD_CHOOSER);
            visit.takeCalls();
            click(dialog, IDC_POLICY_ADD);
            EXPECT_THAT(visit.takeCalls(), IsEmpty()) << "not the account that was chosen last";
            EXPECT_THAT(list.rows(), ElementsAre("OFFICE\\jane"));
        })
        .cancel();
}

TEST_F(AdministrativeAccountsTest, AStoreThatReleasesItsOldStringDoesNotSpoilTheRow)
{
    store.putAccount(L"b");
    store.answer.updateMgrAccounts = [&](uint32_t index, const wchar_t* name) {
        const std::wstring copy = name;
        store.accounts.remove(index); // the string handed in is gone with it
        store.accounts.update(index, _wcsdup(copy.c_str()));
    };
    visit.edit(0).chooseNobody().rows({"b"}).cancel();
}
