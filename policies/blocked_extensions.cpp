// Manage blocked extensions: file masks that are blocked, each for one account or for all.
#include "corvane.h"
#include "frame/dialog_items.h"
#include "policies/account_choice.h"
#include "policies/list_editor.h"
#include "policies/text_entry_dialog.h"
#include "quota/rule_row.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

/// The account of the entry at hand: a length, then that many bytes of a SID; length 0 means all accounts.
struct AccountBuffer {
    /// The longest SID that its one byte for the number of sub-authorities allows: none is too long.
    static constexpr std::uint32_t kCapacity = 8 + 255 * 4;

    std::uint32_t length = 0;
    std::uint8_t bytes[kCapacity] = {};

    void set(const void* account); ///< copies the account, null for all accounts
    const void* sid() const { return length != 0 ? bytes : nullptr; }
    AccountName name() const; ///< as it is shown, "(All)" for all accounts
};
static_assert(offsetof(AccountBuffer, bytes) == 4, "a SID needs no more than this alignment");

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

/// A path mask, and the account that it is blocked for.
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

// @param account  the account to start with; has the chosen one afterwards, also when cancelled.
// @return the mask, a malloc block that passes to the caller; null when cancelled.
wchar_t* ask(HWND owner, const wchar_t* mask, AccountBuffer& account)
{
    BlockedExtensionEntry entry(account);
    entry.ask(owner, mask);
    return entry.takeText().release();
}

/// The account of the entry that is read, shown or edited.
AccountBuffer account;

const wchar_t* entry(std::uint32_t index)
{
    const wchar_t* mask = getExcludeExtsPath(index);
    if (mask != nullptr) {
        account.set(getExcludeExtsSid(index));
    }
    return mask;
}

void render(const CListCtrl& list, int row, std::uint32_t /*index*/)
{
    list.setText(row, 1, account.name().text);
}

std::optional<ListEntry> add(HWND dialog)
{
    account.set(nullptr);
    const wchar_t* mask = ask(dialog, nullptr, account);
    if (mask == nullptr) {
        return std::nullopt;
    }
    ListEntry added{0, mask}; // the store owns the mask once it has it
    unwinding([&] { added.index = addToExcludeExts(mask, account.sid()); });
    return added;
}

std::optional<std::wstring> edit(HWND dialog, std::uint32_t index)
{
    account.set(getExcludeExtsSid(index));
    const wchar_t* mask = ask(dialog, getExcludeExtsPath(index), account);
    if (mask == nullptr) {
        return std::nullopt;
    }
    std::wstring shown = mask;
    unwinding([&] { updateExcludeExts(index, mask, account.sid()); });
    return shown;
}

void storeAndApply()
{
    storeExcludeExts();
    applyExcludeExts();
}

constexpr ListColumn kColumns[] = {{L"Blocked masks", LVCFMT_LEFT, 300},
                                   {L"Applicable to", LVCFMT_LEFT, 100}};

constexpr ListEditor kEditor{
    .templateId = IDD_BLOCKED_EXTENSIONS,
    .listId = IDC_POLICY_LIST,
    .site = crash_sites::kBlockedExtensions,
    .columns = kColumns,
    .load = [] { loadExcludeExts(); },
    .entry = entry,
    .render = render,
    .add = add,
    .edit = edit,
    .remove = [](std::uint32_t index) { removeExcludeExts(index); },
    .store = storeAndApply,
    .free = [] { freeExcludeExts(); },
};

} // namespace

intptr_t editExcludeExts(HWND owner)
{
    return openListEditor(kEditor, owner);
}
