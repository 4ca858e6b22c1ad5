// Manage Administrative Accounts, with the account chooser as its entry dialog.
#include "corvane.h"
#include "res/resource.h"
#include "tests/policies/editor_visit.h"
#include "tests/support/hidden_dialog.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kChooser[] = "Choose subject";

struct AdministrativeAccountsTest : testing::Test {
    AdministrativeAccountsTest()
    {
        store.answer.getSidByNameW = [this](const wchar_t* name) {
            const std::wstring_view wanted = name;
            return store.answer.sidDup(wanted == L"jane"    ? jane
                                       : wanted == L"joe"   ? joe
                                       : wanted == L"ghost" ? ghost
                                                            : nullptr);
        };
    }

    /// The calls to the list itself and to account names, without those of the chooser.
    std::vector<std::string> ownCalls()
    {
        std::vector<std::string> own;
        for (std::string& call : store.takeCalls()) {
            if (call.find("MgrAccounts") != std::string::npos || call.starts_with("getAccountBySidW")) {
                own.push_back(std::move(call));
            }
        }
        return own;
    }

    PolicyStore store;
    EditorVisit visit{store};
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
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(),
                        ElementsAre("getAccountBySidW OFFICE\\jane 128", "addToMgrAccounts OFFICE\\jane"));
            EXPECT_THAT(list.rows(), ElementsAre("OFFICE\\jane", "old"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
        })
        .press(IDOK);
    EXPECT_EQ(visit.run(editMgrAccounts), 0);
    EXPECT_THAT(ownCalls(), ElementsAre("storeMgrAccounts", "applyMgrAccounts", "freeMgrAccounts"));
    EXPECT_THAT(store.accounts.present(), ElementsAre(L"old", L"OFFICE\\jane"));
}

TEST_F(AdministrativeAccountsTest, AnAccountMayBeListedTwice)
{
    visit.add().chooseByName(L"jane").add().chooseByName(L"jane").press(IDOK);
    visit.run(editMgrAccounts);
    EXPECT_THAT(store.accounts.present(), ElementsAre(L"OFFICE\\jane", L"OFFICE\\jane"));
}

TEST_F(AdministrativeAccountsTest, AnyoneAndCancelAddNothing)
{
    visit.add()
        .chooseByName(L"Anyone")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), IsEmpty());
            EXPECT_EQ(list.rowCount(), 0);
        })
        .add()
        .entry(kChooser, [](HWND chooser) { clickLater(chooser, IDCANCEL); })
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), IsEmpty());
            EXPECT_EQ(list.rowCount(), 0);
        })
        .press(IDCANCEL);
    visit.run(editMgrAccounts);
}

TEST_F(AdministrativeAccountsTest, AnAccountWithoutANameAddsNothing)
{
    visit.add()
        .chooseByName(L"ghost")
        .list([](HWND, const ListView& list) { EXPECT_EQ(list.rowCount(), 0); })
        .press(IDCANCEL);
    visit.run(editMgrAccounts);
    EXPECT_THAT(store.accounts.present(), IsEmpty());
}

TEST_F(AdministrativeAccountsTest, AnEditToAnAccountWithoutANameKeepsTheName)
{
    store.putAccount(L"a");
    visit.edit(0)
        .chooseByName(L"ghost")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), ElementsAre("getMgrAccounts 0", testing::StartsWith("getAccountBySidW"),
                                                "updateMgrAccounts 0 a"));
            EXPECT_THAT(list.rows(), ElementsAre("a"));
        })
        .press(IDCANCEL);
    visit.run(editMgrAccounts);
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
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), ElementsAre("getMgrAccounts 1", "getAccountBySidW OFFICE\\joe 128",
                                                "updateMgrAccounts 1 OFFICE\\joe"));
            EXPECT_THAT(list.rows(), ElementsAre("OFFICE\\joe", "a"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
        })
        .press(IDCANCEL);
    EXPECT_EQ(visit.run(editMgrAccounts), 0);
    EXPECT_THAT(ownCalls(), ElementsAre("freeMgrAccounts"));
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
        .entry(kChooser, [](HWND chooser) { clickLater(chooser, IDCANCEL); })
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), ElementsAre("getMgrAccounts 1", "updateMgrAccounts 1 b"));
            EXPECT_THAT(list.rows(), ElementsAre("b", "a"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
        })
        .edit(0)
        .chooseByName(L"Anyone")
        .list([](HWND, const ListView& list) { EXPECT_THAT(list.rows(), ElementsAre("b", "a")); })
        .press(IDOK);
    visit.run(editMgrAccounts);
    EXPECT_THAT(updates, ElementsAre(own, own));
}

TEST_F(AdministrativeAccountsTest, AChooserThatCannotBeShownHasChosenNothing)
{
    visit.add()
        .chooseByName(L"jane")
        .list([this](HWND dialog, const ListView& list) {
            const HiddenDialog chooser(IDD_CHOOSER);
            ownCalls();
            click(dialog, IDC_POLICY_ADD);
            EXPECT_THAT(ownCalls(), IsEmpty()) << "not the account that was chosen last";
            EXPECT_THAT(list.rows(), ElementsAre("OFFICE\\jane"));
        })
        .press(IDCANCEL);
    visit.run(editMgrAccounts);
}

TEST_F(AdministrativeAccountsTest, AStoreThatReleasesItsOldStringDoesNotSpoilTheRow)
{
    store.putAccount(L"b");
    store.answer.updateMgrAccounts = [&](uint32_t index, const wchar_t* name) {
        const std::wstring copy = name;
        store.accounts.remove(index); // the string handed in is gone with it
        store.accounts.update(index, _wcsdup(copy.c_str()));
    };
    visit.edit(0)
        .entry(kChooser, [](HWND chooser) { clickLater(chooser, IDCANCEL); })
        .list([](HWND, const ListView& list) { EXPECT_THAT(list.rows(), ElementsAre("b")); })
        .press(IDCANCEL);
    visit.run(editMgrAccounts);
}
