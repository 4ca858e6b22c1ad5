#include "quota/settings_dialog.h"

#include "frame/crash_guard.h"
#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/domain_servers.h"
#include "frame/message_box.h"
#include "frame/narrow_handle.h"
#include "frame/size_text.h"
#include "frame/wait_cursor.h"
#include "quota/limits.h"
#include "quota/rule.h"
#include "quota/rule_chain.h"
#include "quota/rule_row.h"
#include "res/resource.h"
#include "store/lornix.h"

namespace {

/// What the open dialog works on; one dialog at a time.
struct State {
    QuotaRule* rule = nullptr;
    std::int64_t objectSize = 0; ///< bytes under the folder
    std::int64_t ownedSize = 0;  ///< bytes of the rule's account under the folder
    SidList* members = nullptr;  ///< members of the group that the rule is for; null when there are none
};
State state;

// Checks one of the three radio buttons about existing files, where the template has them, and makes it the
// tab stop of the three.
void chooseFiles(HWND dialog, int id)
{
    CheckRadioButton(dialog, IDC_QUOTA_ALL_FILES, IDC_QUOTA_OWNED_FILES, id);
}

void showSize(HWND dialog, int id, std::int64_t bytes)
{
    wchar_t text[kSizeTextCapacity];
    formatSize(text, bytes);
    SetDlgItemTextW(dialog, id, text);
}

std::int64_t readSize(HWND dialog, int id)
{
    wchar_t text[128];
    GetDlgItemTextW(dialog, id, text, static_cast<int>(std::size(text)));
    return parseSize(text);
}

// Sizes that a slow or broken store fails to give stay 0 or unknown: the limits can be typed all the same.
void measureFolder(HWND dialog)
{
    const WaitCursor measuring;
    QuotaRule& rule = *state.rule;
    state.ownedSize = 0;
    state.objectSize = 0;
    runGuarded([&] { state.objectSize = getRealSize(rule.path); });
    if (state.objectSize < 0) {
        state.objectSize = 0;
    }
    if (rule.inUse != QUOTA_IN_USE_UNKNOWN) {
        return;
    }
    runGuarded([&] {
        if (rule.sid == nullptr) {
            rule.inUse = state.objectSize;
            return;
        }
        SidList* account = createEmptySidList();
        account = appendToSidList(account, sidDup(rule.sid));
        rule.inUse = getRealSizeByOwner(rule.path, account);
        state.ownedSize = rule.inUse;
        chooseFiles(dialog, IDC_QUOTA_OWNED_FILES);
        freeSidList(account);
    });
}

// Asks this machine and the servers of the last account enumeration for the members of the rule's group.
// @return whether there are any.
bool findMembers()
{
    const bool asked = runGuarded([&] {
        const AccountName group = accountName(state.rule->sid);
        state.members = enumerateGroupUsers(nullptr, group.text, nullptr);
        for (const wchar_t* server : {lastDomainServer, lastDomainServer2}) {
            if (server[0] != L'\0') {
                // Handed over: when this faults, nobody knows whether the list still stands, and it is not freed.
                SidList* known = std::exchange(state.members, nullptr);
                state.members = enumerateGroupUsers(server, group.text, known);
            }
        }
    });
    return asked && state.members != nullptr && state.members->count > 0;
}

BOOL onInit(HWND dialog, QuotaRule* rule)
{
    state = State{};
    state.rule = rule;
    SetDlgItemTextW(dialog, IDC_QUOTA_APPLIED_TO, rule->path);
    SetDlgItemTextW(dialog, IDC_QUOTA_CREDENTIALS, accountName(rule->sid).text);
    measureFolder(dialog);
    showSize(dialog, IDC_QUOTA_OBJECT_SIZE, state.objectSize);
    showSize(dialog, IDC_QUOTA_IN_USE, rule->inUse);
    if (rule->sid == nullptr) {
        enableItem(dialog, IDC_QUOTA_OWNED_FILES, false);
        chooseFiles(dialog, IDC_QUOTA_ALL_FILES);
    }

    const Limits limits = proposeLimits({rule->hardLimit, rule->softLimit}, state.objectSize);
    rule->hardLimit = limits.hard;
    rule->softLimit = limits.soft;
    showSize(dialog, IDC_QUOTA_HARD_LIMIT, limits.hard);
    showSize(dialog, IDC_QUOTA_SOFT_LIMIT, limits.soft);

    const bool mayHaveMembers = rule->sid != nullptr && itemExists(dialog, IDC_QUOTA_GROUP_MEMBERS);
    if (!mayHaveMembers || !findMembers()) {
        enableItem(dialog, IDC_QUOTA_GROUP_MEMBERS, false);
    }
    enableItem(dialog, IDC_QUOTA_NEW_MEMBERS, false);
    return TRUE;
}

void onFilesChoice(HWND dialog)
{
    std::int64_t& inUse = state.rule->inUse;
    if (itemIsChecked(dialog, IDC_QUOTA_ALL_FILES)) {
        inUse = state.objectSize;
    } else if (itemIsChecked(dialog, IDC_QUOTA_OWNED_FILES)) {
        inUse = state.ownedSize;
    } else {
        inUse = 0;
    }
    showSize(dialog, IDC_QUOTA_IN_USE, inUse);
}

// Copies the rule to every member of the group, chained after it.
void applyToMembers(HWND dialog)
{
    QuotaRule& rule = *state.rule;
    ChainBuilder chain;
    chain.append(&rule);
    for (int i = 0; i < state.members->count; ++i) {
        QuotaRule* member = newRule(ruleMemory(), rule.path, state.members->sids[i]);
        if (member == nullptr) {
            break; // memory is short: the members so far keep their rules
        }
        member->type = QUOTA_RULE_FOR_ACCOUNT;
        member->inUse = rule.inUse;
        member->hardLimit = rule.hardLimit;
        member->softLimit = rule.softLimit;
        chain.append(member);
    }
    if (itemIsChecked(dialog, IDC_QUOTA_NEW_MEMBERS)) {
        ODS("Now keeping for future tracking...\n");
        addToTrackList(&rule);
    }
}

void onOk(HWND dialog)
{
    QuotaRule& rule = *state.rule;
    LimitRules rules;
    rules.forAnyone = rule.sid == nullptr;
    rules.objectSize = state.objectSize;
    rules.ownedSize = state.ownedSize;
    rules.ownedCounts = itemIsChecked(dialog, IDC_QUOTA_OWNED_FILES);
    rules.allCounts = itemIsChecked(dialog, IDC_QUOTA_ALL_FILES);
    rules.allowBelow = itemIsChecked(dialog, IDC_QUOTA_ALLOW_BELOW);

    const Limits typed{readSize(dialog, IDC_QUOTA_HARD_LIMIT), readSize(dialog, IDC_QUOTA_SOFT_LIMIT)};
    const CorrectedLimits corrected = correctLimits(typed, rules);
    rule.hardLimit = corrected.limits.hard;
    rule.softLimit = corrected.limits.soft;
    if (itemExists(dialog, IDC_QUOTA_GROUP_MEMBERS)) {
        rule.next = nullptr;
        rule.prev = nullptr;
    }
    if (corrected.errors > 0) {
        // Kept: the record has the corrected limits already, while the fields still show what was typed.
        showMessage(dialog,
                    "Data you've entered is invalid.\nEnsure your quota settings are corrected properly.",
                    captions::kInformation);
        return;
    }
    if (state.members != nullptr && itemIsChecked(dialog, IDC_QUOTA_GROUP_MEMBERS)) {
        applyToMembers(dialog);
    }
    EndDialog(dialog, NarrowHandle::of(&rule).carrier());
}

BOOL onCommand(HWND dialog, int id)
{
    switch (id) {
    case IDC_QUOTA_ALL_FILES:
    case IDC_QUOTA_NO_FILES:
    case IDC_QUOTA_OWNED_FILES:
        onFilesChoice(dialog);
        return TRUE;
    case IDC_QUOTA_GROUP_MEMBERS:
        enableItem(dialog, IDC_QUOTA_NEW_MEMBERS, itemIsChecked(dialog, IDC_QUOTA_GROUP_MEMBERS));
        return TRUE;
    case IDOK:
        onOk(dialog);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

void onDestroy()
{
    state.rule = nullptr;
    if (SidList* members = std::exchange(state.members, nullptr)) {
        freeSidList(members);
    }
}

INT_PTR CALLBACK MyDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    return guardProcedure(crash_sites::kQuotaSettings, [&]() -> INT_PTR {
        switch (message) {
        case WM_INITDIALOG:
            return onInit(dialog, reinterpret_cast<QuotaRule*>(lParam));
        case WM_COMMAND:
            return onCommand(dialog, LOWORD(wParam));
        case WM_DESTROY:
            onDestroy();
            return TRUE;
        default:
            return FALSE;
        }
    });
}

} // namespace

intptr_t editQuotaListEntry(HWND owner, QuotaRule* record, int mode)
{
    const INT_PTR code = openDialog(mode != 0 ? IDD_QUOTA_SETTINGS_ADD : IDD_QUOTA_SETTINGS_EDIT, owner,
                                    MyDlgProc, reinterpret_cast<LPARAM>(record));
    // Some systems keep an end code as a signed int, and so give values from 2 GiB on back as negative ones.
    return code == -1 ? -1 : NarrowHandle::fromCarrier(code).carrier();
}
