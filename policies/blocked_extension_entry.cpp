#include "policies/blocked_extension_entry.h"

#include "frame/dialog_items.h"
#include "policies/account_choice.h"
#include "policies/text_entry_dialog.h"
#include "res/resource.h"

#include <cstring>

void AccountBuffer::set(const void* account)
{
    length = 0;
    if (account != nullptr) {
        length = GetLengthSid(const_cast<void*>(account));
        std::memcpy(bytes, account, length);
    }
}

AccountName AccountBuffer::name() const
{
    return length != 0 ? accountName(bytes) : AccountName{L"(All)"};
}

namespace {

class BlockedExtensionEntry : public TextEntryDialog {
public:
    explicit BlockedExtensionEntry(AccountBuffer& account)
        : TextEntryDialog(IDD_BLOCKED_EXTENSION_ENTRY, crash_sites::kBlockedExtensionEntry)
        , m_account(account)
    {
    }

private:
    void showAccount() const { SetDlgItemTextW(window(), IDC_ENTRY_ACCOUNT, m_account.name().text); }

    void onInit() override
    {
        TextEntryDialog::onInit();
        showAccount();
        enableItem(window(), IDC_ENTRY_ACCOUNT, false);
    }

    void onButton(int id) override
    {
        if (id != IDC_ENTRY_BROWSE) {
            return;
        }
        const AccountChoice choice = chooseAccount(window());
        if (choice.anyone || choice.sid != nullptr) {
            m_account.set(choice.sid);
            showAccount();
        }
    }

    AccountBuffer& m_account;
};

} // namespace

wchar_t* askBlockedExtension(HWND owner, const wchar_t* mask, AccountBuffer& account)
{
    BlockedExtensionEntry entry(account);
    entry.ask(owner, mask);
    return entry.takeText().release();
}
