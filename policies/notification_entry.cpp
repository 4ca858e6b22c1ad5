#include "policies/notification_entry.h"

#include "corvane.h"
#include "files/select_file.h"
#include "frame/crash_guard.h"
#include "frame/dialog.h"
#include "frame/dialog_items.h"
#include "policies/attribute_number.h"
#include "policies/control_text.h"
#include "policies/rate_text.h"
#include "res/resource.h"

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
void check(HWND dialog, const Choice (&choices)[N], std::int32_t value)
{
    for (const Choice& choice : choices) {
        if (choice.value == value) {
            setButtonState(dialog, choice.id, BST_CHECKED);
        }
    }
}

// Without a checked button the old value stays: the one stored need not be among the choices.
template <std::size_t N>
void take(HWND dialog, const Choice (&choices)[N], NotificationRecord::Attribute& attribute)
{
    for (const Choice& choice : choices) {
        if (getButtonState(dialog, choice.id) == BST_CHECKED) {
            attribute = choice.text;
        }
    }
}

void enableAccount(HWND dialog, bool enabled)
{
    enableItem(dialog, IDC_NOTIFY_ACCOUNT, enabled);
}

void onInit(HWND dialog, const NotificationRecord& record)
{
    SetDlgItemTextW(dialog, IDC_ENTRY_TEXT, record.script.c_str());
    for (const Field& field : kFields) {
        if (const wchar_t* text = record.text(field.attribute)) {
            SetDlgItemTextW(dialog, field.id, text);
        } else if (field.id == IDC_NOTIFY_MIN_INCREMENT) {
            SetDlgItemTextW(dialog, field.id, L"0");
        }
    }
    const std::int32_t forWhom = attributeNumber(record.text(NOTIFICATION_FOR_WHOM));
    check(dialog, kForWhom, forWhom);
    enableAccount(dialog, forWhom == 1);
    const std::int32_t rate = attributeNumber(record.text(NOTIFICATION_RATE));
    check(dialog, kRates, rate != 0 ? rate : kDefaultRate);
}

void onOk(HWND dialog, NotificationRecord& record)
{
    record.script = controlText(dialog, IDC_ENTRY_TEXT);
    // The account is taken also while its edit is disabled: it is there again when the choice returns to it.
    for (const Field& field : kFields) {
        const wchar_t* text = controlText(dialog, field.id);
        record.attributes[field.attribute] =
            text[0] != L'\0' ? NotificationRecord::Attribute(text) : std::nullopt;
    }
    forgetControlText();
    take(dialog, kForWhom, record.attributes[NOTIFICATION_FOR_WHOM]);
    take(dialog, kRates, record.attributes[NOTIFICATION_RATE]);
    EndDialog(dialog, reinterpret_cast<INT_PTR>(&record));
}

void onCommand(HWND dialog, int id, NotificationRecord& record)
{
    switch (id) {
    case IDC_NOTIFY_ANYONE:
    case IDC_NOTIFY_USERS_OF_LIMIT:
    case IDC_NOTIFY_USERS_NOT_OF_LIMIT:
    case IDC_NOTIFY_ACCOUNT_ONLY:
        enableAccount(dialog, id == IDC_NOTIFY_ACCOUNT_ONLY);
        break;
    case IDC_ENTRY_BROWSE:
        if (const wchar_t* path = selectFile(dialog, select_file_mode::kExecutable)) {
            SetDlgItemTextW(dialog, IDC_ENTRY_TEXT, path);
        }
        break;
    case IDOK:
        onOk(dialog, record);
        break;
    case IDCANCEL:
        EndDialog(dialog, 0);
        break;
    default:
        break;
    }
}

INT_PTR CALLBACK MyDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    return guardProcedure(crash_sites::kNotificationEntry, [&]() -> INT_PTR {
        auto* record = reinterpret_cast<NotificationRecord*>(GetWindowLongPtrW(dialog, GWLP_USERDATA));
        switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, GWLP_USERDATA, lParam);
            onInit(dialog, *reinterpret_cast<const NotificationRecord*>(lParam));
            return TRUE;
        case WM_COMMAND:
            onCommand(dialog, LOWORD(wParam), *record);
            return TRUE;
        default:
            return FALSE;
        }
    });
}

} // namespace

std::unique_ptr<NotificationRecord> askNotification(HWND owner, std::unique_ptr<NotificationRecord> record)
{
    if (!record) {
        record = std::make_unique<NotificationRecord>(NotificationRecord::fresh());
    }
    const INT_PTR code =
        openDialog(IDD_NOTIFICATION_ENTRY, owner, MyDlgProc, reinterpret_cast<LPARAM>(record.get()));
    return code == 0 || code == -1 ? nullptr : std::move(record);
}
