// Notifications: the scripts that the quota engine starts when a limit is reached.
#include "corvane.h"
#include "frame/size_text.h"
#include "policies/list_editor.h"
#include "policies/notification_entry.h"
#include "policies/rate_text.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <cwchar>

namespace {

namespace column {
constexpr int kForWhom = 1;
constexpr int kRate = 2;
constexpr int kRunAs = 3;
constexpr int kMinIncrement = 4;
} // namespace column

constexpr ListColumn kColumns[] = {{L"Scripts", LVCFMT_LEFT, 300},
                                   {L"For whom started", LVCFMT_LEFT, 100},
                                   {L"How often", LVCFMT_RIGHT, 80},
                                   {L"Impersonate to", LVCFMT_LEFT, 100},
                                   {L"Min increment", LVCFMT_RIGHT, 80}};

const wchar_t* orEmpty(const wchar_t* text)
{
    return text != nullptr ? text : L"";
}

const wchar_t* entry(std::uint32_t index)
{
    return index < getNotificationsCount() ? orEmpty(getNotifications(index)) : nullptr;
}

const wchar_t* forWhom(std::uint32_t index)
{
    switch (getINAttr(index, NOTIFICATION_FOR_WHOM)) {
    case 1:
        return orEmpty(getNAttr(index, NOTIFICATION_ACCOUNT));
    case 2:
        return L"As quota";
    case 3:
        return L"Not as quota";
    default:
        return L"Anyone";
    }
}

void render(const CListCtrl& list, int row, std::uint32_t index)
{
    list.setText(row, column::kForWhom, forWhom(index));

    wchar_t rate[kRateTextCapacity];
    formatRate(rate, getINAttr(index, NOTIFICATION_RATE));
    list.setText(row, column::kRate, rate);

    const wchar_t* runAs = getNAttr(index, NOTIFICATION_RUN_AS);
    list.setText(row, column::kRunAs, runAs != nullptr ? runAs : L"IUSR_VANTREL");

    wchar_t increment[kSizeTextCapacity];
    formatSize(increment, getINAttr(index, NOTIFICATION_MIN_INCREMENT));
    list.setText(row, column::kMinIncrement, increment);
}

/// A copy that passes to the store; null stays null.
wchar_t* copyForStore(const wchar_t* text)
{
    return text != nullptr ? _wcsdup(text) : nullptr;
}

void setAttributes(std::uint32_t index, const NotificationRecord& record)
{
    for (std::uint32_t attribute = 0; attribute < NOTIFICATION_ATTRIBUTE_COUNT; ++attribute) {
        setNAttr(index, attribute, copyForStore(record.text(attribute)));
    }
}

std::optional<ListEntry> add(HWND dialog)
{
    const std::unique_ptr<NotificationRecord> record = askNotification(dialog, nullptr);
    if (!record) {
        return std::nullopt;
    }
    ListEntry added{0, record->script};
    unwinding([&] {
        // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the copy is the store's now
        added.index = addToNotifications(copyForStore(record->script.c_str()));
        setAttributes(added.index, *record);
    });
    return added;
}

std::optional<std::wstring> edit(HWND dialog, std::uint32_t index)
{
    auto stored = std::make_unique<NotificationRecord>();
    unwinding([&] {
        stored->script = orEmpty(getNotifications(index));
        for (std::uint32_t attribute = 0; attribute < NOTIFICATION_ATTRIBUTE_COUNT; ++attribute) {
            stored->attributes[attribute].set(getNAttr(index, attribute));
        }
    });
    const std::unique_ptr<NotificationRecord> record = askNotification(dialog, std::move(stored));
    if (!record) {
        return std::nullopt;
    }
    unwinding([&] {
        updateNotifications(index, copyForStore(record->script.c_str()));
        setAttributes(index, *record);
    });
    return record->script;
}

constexpr ListEditor kEditor{
    .templateId = IDD_NOTIFICATIONS,
    .listId = IDC_NOTIFICATIONS_LIST,
    .site = crash_sites::kNotifications,
    .columns = kColumns,
    .load = [] { loadNotifications(); },
    .entry = entry,
    .render = render,
    .add = add,
    .edit = edit,
    .remove = [](std::uint32_t index) { removeNotifications(index); },
    .store =
        [] { storeNotifications(); }, // there is nothing to apply: the engine reads the list as it is stored
    .free = [] { freeNotifications(); },
};

} // namespace

intptr_t editNotifications(HWND owner)
{
    return openListEditor(kEditor, owner);
}
