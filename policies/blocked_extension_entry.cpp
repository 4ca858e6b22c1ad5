#include "policies/blocked_extension_entry.h"

#include "frame/dialog_items.h"
#include "policies/account_choice.h"
#include "policies/text_entry_dialog.h"
#include "res/resource.h"

#include <cstring>

AccountBuffer* publishedAccount = nullptr;

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

void showAccount(HWND dialog)
{
    SetDlgItemTextW(dialog, IDC_ENTRY_ACCOUNT, publishedAccount->name().text);
}

void onInit(HWND dialog)
{
    showAccount(dialog);
    enableItem(dialog, IDC_ENTRY_ACCOUNT, false);
}

void onCommand(HWND dialog, int id)
{
    if (id != IDC_ENTRY_BROWSE) {
        return;
    }
    const AccountChoice choice = chooseAccount(dialog);
    if (choice.anyone || choice.sid != nullptr) {
        publishedAccount->set(choice.sid);
        showAccount(dialog);
    }
}

constexpr TextEntryDialog kDialog{IDD_BLOCKED_EXTENSION_ENTRY, crash_sites::kBlockedExtensionEntry, onInit,
                                  onCommand, nullptr};

} // namespace

wchar_t* askBlockedExtension(HWND owner, const wchar_t* mask)
{
    return enteredText(openTextEntry(kDialog, owner, mask));
}
