#include "policies/notification_entry.h"

#include "corvane.h"
#include "files/select_file.h"
#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "frame/radio_group.h"
#include "policies/attribute_number.h"
#include "policies/control_text.h"
#include "policies/rate_text.h"
#include "res/resource.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string>

namespace {

/// A radio button and the attribute's value that it stands for.
struct Choice {
    int id;
    std::int32_t value;
    const wchar_t* text;
};

constexpr Choice kForWhom[] = {
    {IDC_NOTIFY_ANYONE, 0, L"0"},
    {IDC_NOTIFY_ACCOUNT_ONLY, 1, L"1"},
    {IDC_NOTIFY_USERS_OF_LIMIT, 2, L"2"},
    {IDC_NOTIFY_USERS_NOT_OF_LIMIT, 3, L"3"},
};

constexpr Choice kRates[] = {
    {IDC_NOTIFY_NO_LIMIT, -1, L"-1"},         {IDC_NOTIFY_PER_SECOND, 1, L"1"},
    {IDC_NOTIFY_PER_MINUTE, 60, L"60"},       {IDC_NOTIFY_PER_FIVE_MINUTES, 300, L"300"},
    {IDC_NOTIFY_PER_HOUR, 3600, L"3600"},     {IDC_NOTIFY_PER_DAY, kDefaultRate, L"86400"},
    {IDC_NOTIFY_PER_WEEK, 604800, L"604800"},
};

/// Edits and the attributes that they hold.
struct Field {
    int id;
    std::size_t attribute;
};

constexpr Field kFields[] = {
    {IDC_NOTIFY_ACCOUNT, NOTIFICATION_ACCOUNT},
    {IDC_NOTIFY_RUN_AS, NOTIFICATION_RUN_AS},
    {IDC_NOTIFY_PASSWORD, NOTIFICATION_PASSWORD},
    {IDC_NOTIFY_MIN_INCREMENT, NOTIFICATION_MIN_INCREMENT},
};

template <std::size_t N>
void keepOneTabStop(HWND dialog, const Choice (&choices)[N])
{
    int ids[N];
    std::transform(choices, choices + N, ids, [](const Choice& choice) { return choice.id; });
    keepOneTabStop(dialog, std::span<const int>(ids));
}

template <std::size_t N>
bool isOneOf(const Choice (&choices)[N], int id)
{
    return std::any_of(choices, choices + N, [id](const Choice& choice) { return choice.id == id; });
}

template <std::size_t N>
void check(HWND dialog, const Choice (&choices)[N], std::int32_t value)
{
    for (const Choice& choice : choices) {
        if (choice.value == value) {
            setButtonState(dialog, choice.id, BST_CHECKED);
        }
    }
    keepOneTabStop(dialog, choices);
}

// Without a checked button the old value stays: the one stored need not be among the choices.
template <std::size_t N>
void take(HWND dialog, const Choice (&choices)[N], WipedText& attribute)
{
    for (const Choice& choice : choices) {
        if (getButtonState(dialog, choice.id) == BST_CHECKED) {
            attribute.set(choice.text);
        }
    }
}

class NotificationEntry : public Dialog {
public:
    explicit NotificationEntry(NotificationRecord& record)
        : Dialog(&crash_sites::kNotificationEntry)
        , m_record(record)
    {
    }

    /// @return whether OK ended the dialog, with the record changed.
    bool ask(HWND owner)
    {
        run(IDD_NOTIFICATION_ENTRY, owner, reinterpret_cast<LPARAM>(&m_record));
        return m_accepted;
    }

private:
    void onInit() override;
    bool onCommand(int id) override;
    void onDestroy() override;
    void onOk() override;
    void enableAccount(bool enabled) const { enableItem(window(), IDC_NOTIFY_ACCOUNT, enabled); }

    NotificationRecord& m_record;
    bool m_accepted = false;
};

void NotificationEntry::onInit()
{
    // Those who watch the dialog from outside find the record with its window.
    SetWindowLongPtrW(window(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&m_record));
    SetDlgItemTextW(window(), IDC_ENTRY_TEXT, m_record.script.c_str());
    for (const Field& field : kFields) {
        if (const wchar_t* text = m_record.text(field.attribute)) {
            SetDlgItemTextW(window(), field.id, text);
        } else if (field.id == IDC_NOTIFY_MIN_INCREMENT) {
            SetDlgItemTextW(window(), field.id, L"0");
        }
    }
    limitTyping(window(), IDC_ENTRY_TEXT);
    for (const Field& field : kFields) {
        limitTyping(window(), field.id);
    }
    const std::int32_t forWhom = attributeNumber(m_record.text(NOTIFICATION_FOR_WHOM));
    check(window(), kForWhom, forWhom);
    enableAccount(forWhom == 1);
    const std::int32_t rate = attributeNumber(m_record.text(NOTIFICATION_RATE));
    check(window(), kRates, rate != 0 ? rate : kDefaultRate);
}

void NotificationEntry::onOk()
{
    m_record.script = controlText(window(), IDC_ENTRY_TEXT);
    // The account is taken also while its edit is disabled: it is there again when the choice returns to it.
    for (const Field& field : kFields) {
        const wchar_t* text = controlText(window(), field.id);
        m_record.attributes[field.attribute].set(text[0] != L'\0' ? text : nullptr);
    }
    forgetControlText();
    take(window(), kForWhom, m_record.attributes[NOTIFICATION_FOR_WHOM]);
    take(window(), kRates, m_record.attributes[NOTIFICATION_RATE]);
    m_accepted = true;
    end(reinterpret_cast<INT_PTR>(&m_record));
}

// The edit is the platform's, which gives its memory back as it is: what stands there is written over first.
void NotificationEntry::onDestroy()
{
    HWND password = GetDlgItem(window(), IDC_NOTIFY_PASSWORD);
    const std::wstring blanks(static_cast<std::size_t>(GetWindowTextLengthW(password)), L' ');
    SetWindowTextW(password, blanks.c_str());
}

bool NotificationEntry::onCommand(int id)
{
    if (isOneOf(kForWhom, id)) {
        enableAccount(id == IDC_NOTIFY_ACCOUNT_ONLY);
        keepOneTabStop(window(), kForWhom);
    } else if (isOneOf(kRates, id)) {
        keepOneTabStop(window(), kRates);
    }
    if (id == IDC_ENTRY_BROWSE) {
        if (const wchar_t* path = selectFile(window(), select_file_mode::kExecutable)) {
            SetDlgItemTextW(window(), IDC_ENTRY_TEXT, path);
        }
    }
    return true;
}

} // namespace

std::unique_ptr<NotificationRecord> askNotification(HWND owner, std::unique_ptr<NotificationRecord> record)
{
    if (!record) {
        record = std::make_unique<NotificationRecord>(NotificationRecord::fresh());
    }
    return NotificationEntry(*record).ask(owner) ? std::move(record) : nullptr;
}
