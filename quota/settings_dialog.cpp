// The Quota Settings dialog.
#include "corvane.h"
#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/domain_servers.h"
#include "frame/message_box.h"
#include "frame/narrow_handle.h"
#include "frame/radio_group.h"
#include "frame/size_text.h"
#include "frame/wait_cursor.h"
#include "quota/busy_notice.h"
#include "quota/limits.h"
#include "quota/rule.h"
#include "quota/rule_chain.h"
#include "quota/rule_row.h"
#include "res/resource.h"
#include "store/lornix.h"

namespace {

// The choices for existing files, in their order.
constexpr int kFilesChoices[] = {IDC_QUOTA_NO_FILES, IDC_QUOTA_OWNED_FILES, IDC_QUOTA_ALL_FILES};

class QuotaSettingsDialog : public Dialog {
public:
    explicit QuotaSettingsDialog(QuotaRule* rule)
        : Dialog(&crash_sites::kQuotaSettings)
        , m_rule(rule)
    {
    }

    INT_PTR show(int templateId, HWND owner)
    {
        return run(templateId, owner, reinterpret_cast<LPARAM>(m_rule));
    }

private:
    void onInit() override;
    bool onCommand(int id) override;
    void onDestroy() override;

    void onFilesChoice();
    void onOk() override;

    void measureFolder();
    bool findMembers();
    void applyToMembers();

    void chooseFiles(int id) const;
    void showSize(int id, std::int64_t bytes) const;
    std::int64_t readSize(int id) const;

    QuotaRule* m_rule;
    std::int64_t m_objectSize = 0; ///< bytes under the folder
    std::int64_t m_ownedSize = 0;  ///< bytes of the rule's account under the folder
    SidList* m_members = nullptr;  ///< members of the group that the rule is for; null when there are none
};

// Checks one of the three radio buttons about existing files, where the template has them, and makes it the
// tab stop of the three.
void QuotaSettingsDialog::chooseFiles(int id) const
{
    CheckRadioButton(window(), IDC_QUOTA_ALL_FILES, IDC_QUOTA_OWNED_FILES, id);
}

void QuotaSettingsDialog::showSize(int id, std::int64_t bytes) const
{
    wchar_t text[kSizeTextCapacity];
    formatSize(text, bytes);
    SetDlgItemTextW(window(), id, text);
}

std::int64_t QuotaSettingsDialog::readSize(int id) const
{
    wchar_t text[128];
    GetDlgItemTextW(window(), id, text, static_cast<int>(std::size(text)));
    return parseSize(text);
}

// Sizes that a slow or broken store fails to give stay 0 or unknown: the limits can be typed all the same.
void QuotaSettingsDialog::measureFolder()
{
    const WaitCursor measuring;
    const BusyNotice notice(window(), L"Measuring ...", m_rule->path);
    m_ownedSize = 0;
    m_objectSize = 0;
    runGuarded([&] { m_objectSize = getRealSize(m_rule->path); });
    if (m_objectSize < 0) {
        m_objectSize = 0;
    }
    if (m_rule->inUse != QUOTA_IN_USE_UNKNOWN) {
        return;
    }
    runGuarded([&] {
        if (m_rule->sid == nullptr) {
            m_rule->inUse = m_objectSize;
            return;
        }
        SidList* account = createEmptySidList();
        account = appendToSidList(account, sidDup(m_rule->sid));
        m_rule->inUse = getRealSizeByOwner(m_rule->path, account);
        m_ownedSize = m_rule->inUse;
        chooseFiles(IDC_QUOTA_OWNED_FILES);
        freeSidList(account);
    });
}

// Asks this machine and the servers of the last account enumeration for the members of the rule's group.
// @return whether there are any.
bool QuotaSettingsDialog::findMembers()
{
    const WaitCursor asking;
    wchar_t shownName[kAccountNameCapacity] = L"";
    GetDlgItemTextW(window(), IDC_QUOTA_CREDENTIALS, shownName, kAccountNameCapacity);
    const BusyNotice notice(window(), L"Looking up group members ...", shownName);
    const bool asked = runGuarded([&] {
        const AccountName group = accountName(m_rule->sid);
        m_members = enumerateGroupUsers(nullptr, group.text, nullptr);
        for (const wchar_t* server : {lastDomainServer, lastDomainServer2}) {
            if (server[0] != L'\0') {
                // Handed over: when this faults, nobody knows whether the list still stands, and it is not freed.
                SidList* known = std::exchange(m_members, nullptr);
                m_members = enumerateGroupUsers(server, group.text, known);
            }
        }
    });
    return asked && m_members != nullptr && m_members->count > 0;
}

void QuotaSettingsDialog::onInit()
{
    SetDlgItemTextW(window(), IDC_QUOTA_APPLIED_TO, m_rule->path);
    SetDlgItemTextW(window(), IDC_QUOTA_CREDENTIALS, accountName(m_rule->sid).text);
    measureFolder();
    showSize(IDC_QUOTA_OBJECT_SIZE, m_objectSize);
    showSize(IDC_QUOTA_IN_USE, m_rule->inUse);
    if (m_rule->sid == nullptr) {
        enableItem(window(), IDC_QUOTA_OWNED_FILES, false);
        chooseFiles(IDC_QUOTA_ALL_FILES);
    }

    keepOneTabStop(window(), kFilesChoices);

    const Limits limits = proposeLimits({m_rule->hardLimit, m_rule->softLimit}, m_objectSize);
    m_rule->hardLimit = limits.hard;
    m_rule->softLimit = limits.soft;
    showSize(IDC_QUOTA_HARD_LIMIT, limits.hard);
    showSize(IDC_QUOTA_SOFT_LIMIT, limits.soft);

    const bool mayHaveMembers = m_rule->sid != nullptr && itemExists(window(), IDC_QUOTA_GROUP_MEMBERS);
    if (!mayHaveMembers || !findMembers()) {
        enableItem(window(), IDC_QUOTA_GROUP_MEMBERS, false);
    }
    enableItem(window(), IDC_QUOTA_NEW_MEMBERS, false);
}

void QuotaSettingsDialog::onFilesChoice()
{
    keepOneTabStop(window(), kFilesChoices);
    std::int64_t& inUse = m_rule->inUse;
    if (itemIsChecked(window(), IDC_QUOTA_ALL_FILES)) {
        inUse = m_objectSize;
    } else if (itemIsChecked(window(), IDC_QUOTA_OWNED_FILES)) {
        inUse = m_ownedSize;
    } else {
        inUse = 0;
    }
    showSize(IDC_QUOTA_IN_USE, inUse);
}

// Copies the rule to every member of the group, chained after it.
void QuotaSettingsDialog::applyToMembers()
{
    ChainBuilder chain;
    chain.append(m_rule);
    for (int i = 0; i < m_members->count; ++i) {
        QuotaRule* member = newRule(ruleMemory(), m_rule->path, m_members->sids[i]);
        if (member == nullptr) {
            break; // memory is short: the members so far keep their rules
        }
        member->type = QUOTA_RULE_FOR_ACCOUNT;
        member->inUse = m_rule->inUse;
        member->hardLimit = m_rule->hardLimit;
        member->softLimit = m_rule->softLimit;
        chain.append(member);
    }
    if (itemIsChecked(window(), IDC_QUOTA_NEW_MEMBERS)) {
        ODS("Now keeping for future tracking...\n");
        addToTrackList(m_rule);
    }
}

void QuotaSettingsDialog::onOk()
{
    LimitRules rules;
    rules.forAnyone = m_rule->sid == nullptr;
    rules.objectSize = m_objectSize;
    rules.ownedSize = m_ownedSize;
    rules.ownedCounts = itemIsChecked(window(), IDC_QUOTA_OWNED_FILES);
    rules.allCounts = itemIsChecked(window(), IDC_QUOTA_ALL_FILES);
    rules.allowBelow = itemIsChecked(window(), IDC_QUOTA_ALLOW_BELOW);

    const Limits typed{readSize(IDC_QUOTA_HARD_LIMIT), readSize(IDC_QUOTA_SOFT_LIMIT)};
    const CorrectedLimits corrected = correctLimits(typed, rules);
    m_rule->hardLimit = corrected.limits.hard;
    m_rule->softLimit = corrected.limits.soft;
    if (itemExists(window(), IDC_QUOTA_GROUP_MEMBERS)) {
        m_rule->next = nullptr;
        m_rule->prev = nullptr;
    }
    if (corrected.errors > 0) {
        // QUIRK: the record has the corrected limits already, also if Cancel follows, while the fields still show what
        // was typed. SettingsOkTest.HardLimitIsAtLeast1024
        showMessage(window(),
                    "Data you've entered is invalid.\nEnsure your quota settings are corrected properly.",
                    captions::kInformation);
        return;
    }
    if (m_members != nullptr && itemIsChecked(window(), IDC_QUOTA_GROUP_MEMBERS)) {
        applyToMembers();
    }
    end(NarrowHandle::of(m_rule).carrier());
}

bool QuotaSettingsDialog::onCommand(int id)
{
    switch (id) {
    case IDC_QUOTA_ALL_FILES:
    case IDC_QUOTA_NO_FILES:
    case IDC_QUOTA_OWNED_FILES:
        onFilesChoice();
        return true;
    case IDC_QUOTA_GROUP_MEMBERS:
        enableItem(window(), IDC_QUOTA_NEW_MEMBERS, itemIsChecked(window(), IDC_QUOTA_GROUP_MEMBERS));
        return true;
    default:
        return false;
    }
}

void QuotaSettingsDialog::onDestroy()
{
    if (SidList* members = std::exchange(m_members, nullptr)) {
        freeSidList(members);
    }
}

} // namespace

intptr_t editQuotaListEntry(HWND owner, QuotaRule* record, int mode)
{
    const INT_PTR code =
        QuotaSettingsDialog(record).show(mode != 0 ? IDD_QUOTA_SETTINGS_ADD : IDD_QUOTA_SETTINGS_EDIT, owner);
    // Some systems keep an end code as a signed int, and so give values from 2 GiB on back as negative ones.
    return code == -1 ? -1 : NarrowHandle::fromCarrier(code).carrier();
}
