// Manage blocked extensions: file masks that are blocked, each for one account or for all.
#include "corvane.h"
#include "policies/blocked_extension_entry.h"
#include "policies/list_editor.h"
#include "res/resource.h"
#include "store/lornix.h"

namespace {

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
    const wchar_t* mask = askBlockedExtension(dialog, nullptr, account);
    if (mask == nullptr) {
        return std::nullopt;
    }
    std::wstring shown = mask; // the store owns the mask once it has it
    return ListEntry{addToExcludeExts(mask, account.sid()), std::move(shown)};
}

std::optional<std::wstring> edit(HWND dialog, std::uint32_t index)
{
    account.set(getExcludeExtsSid(index));
    const wchar_t* mask = askBlockedExtension(dialog, getExcludeExtsPath(index), account);
    if (mask == nullptr) {
        return std::nullopt;
    }
    std::wstring shown = mask;
    updateExcludeExts(index, mask, account.sid());
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
