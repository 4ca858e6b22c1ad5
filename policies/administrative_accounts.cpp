// Manage Administrative Accounts: the accounts that may administer quotas.
#include "corvane.h"
#include "policies/account_choice.h"
#include "policies/text_list.h"
#include "quota/rule_row.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <cwchar>

namespace {

struct Accounts {
    // QUIRK: an edit that chooses nothing goes the way of a real one, and hands the entry's own string back to the store.
    // AdministrativeAccountsTest.ACancelledEditHandsTheStoreItsOwnStringBack
    static const wchar_t* ask(HWND owner, const wchar_t* current)
    {
        const AccountChoice choice = chooseAccount(owner);
        if (choice.sid == nullptr) {
            return current;
        }
        const AccountName name = accountName(choice.sid);
        // An account that has lost its name meanwhile is none that could be listed.
        return name.text[0] != L'\0' ? _wcsdup(name.text) : current;
    }

    static const wchar_t* get(std::uint32_t index) { return getMgrAccounts(index); }
    static std::uint32_t add(const wchar_t* name) { return addToMgrAccounts(name); }
    static void update(std::uint32_t index, const wchar_t* name) { updateMgrAccounts(index, name); }
};

void storeAndApply()
{
    storeMgrAccounts();
    applyMgrAccounts();
}

constexpr ListColumn kColumns[] = {{L"Accounts", LVCFMT_LEFT, 400}};

constexpr ListEditor kEditor{
    .templateId = IDD_ADMINISTRATIVE_ACCOUNTS,
    .listId = IDC_POLICY_LIST,
    .site = crash_sites::kAdministrativeAccounts,
    .columns = kColumns,
    .load = [] { loadMgrAccounts(); },
    .entry = Accounts::get,
    .render = nullptr,
    .add = TextList<Accounts>::add,
    .edit = TextList<Accounts>::edit,
    .remove = [](std::uint32_t index) { removeMgrAccounts(index); },
    .store = storeAndApply,
    .free = [] { freeMgrAccounts(); },
};

} // namespace

intptr_t editMgrAccounts(HWND owner)
{
    return openListEditor(kEditor, owner);
}
