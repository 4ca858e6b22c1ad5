// The exports for the policy lists.
#include "lornix/last_error.h"
#include "lornix/policies/policy_list.h"
#include "lornix/sid.h"
#include "store/lornix.h"

namespace lornix {
namespace {

PolicyList notifications({.kind = {"notifications", 1, true}, .word = "notification", .hasAttributes = true},
                         L"The list of notifications");
PolicyList excludes({.kind = {"excludes", 1, true}, .word = "exclude"}, L"The list of exception files");
PolicyList blockedExtensions({.kind = {"blocked-extensions", 1, true}, .word = "mask", .hasAccount = true},
                             L"The list of blocked extensions");
PolicyList administrativeAccounts({.kind = {"administrative-accounts", 1, true}, .word = "account"},
                                  L"The list of administrative accounts");
PolicyList backupTools({.kind = {"backup-tools", 1, true}, .word = "tool"}, L"The list of backup tools");

const wchar_t* text(PolicyList& list, uint32_t index)
{
    const PolicyEntry* entry = list.at(index);
    return entry == nullptr ? nullptr : entry->text;
}

/// @return false, the text that comes with an account released, when it is none: it must not turn into all accounts.
bool isAccount(const wchar_t* text, const void* sid)
{
    if (sid != nullptr && !isSid(sid)) {
        blockedExtensions.refuse(text);
        report(L"The account of a blocked extension is no valid SID.");
        return false;
    }
    return true;
}

constexpr FileKind kActiveExceptions{"active-exceptions", 1, true};

bool endsWith(const std::wstring& text, std::wstring_view tail)
{
    return text.size() >= tail.size() &&
           _wcsnicmp(text.c_str() + text.size() - tail.size(), tail.data(), tail.size()) == 0;
}

/// Whether a name is that of a file in the data folder that the store does not keep for itself.
bool isFreeName(const std::wstring& name)
{
    return !name.empty() && name.find_first_of(L"\\/:*?\"<>|") == std::wstring::npos && name.back() != L'.' &&
           name.back() != L' ' && !endsWith(name, L".txt") && !endsWith(name, kTemporary) &&
           !endsWith(name, L".lock") && name.size() < MAX_PATH;
}

/// Of a file with active exceptions, whatever they are.
Finding findingOf(std::string_view text)
{
    TextReader reader(text, kActiveExceptions);
    for (std::string_view line; reader.isOurs() && reader.next(line);) {
    }
    return reader.finding();
}

/// Writes the exceptions that are active, excluded files and backup tools, to a file of the data folder.
/// @param fileName  without a folder, and none of the store's own.
bool writeActiveExceptions(const std::wstring& fileName)
{
    if (!isFreeName(fileName)) {
        report(L"\"" + fileName + L"\" is no name for a file with the active exceptions.");
        return false;
    }
    DataFolder data = DataFolder::current();
    if (!data.isKnown()) {
        return false;
    }
    std::string lines;
    Patience patience;
    for (const PolicyList* list : {&excludes, &backupTools}) {
        const auto active = list->active(data, patience);
        if (!active) {
            return false;
        }
        lines += active->lines;
    }
    KeptFile file{data, data.path(fileName), L"The file with the active exceptions"};
    const auto lock = openForChange(data, file.title + L" cannot be stored");
    const auto present = lock ? readKept<Finding>(file, patience, findingOf) : std::nullopt;
    return present && replaceKept(file, present->condition, wholeText(kActiveExceptions, lines), patience);
}

} // namespace
} // namespace lornix

using namespace lornix;

static_assert(NOTIFICATION_ATTRIBUTE_COUNT == kAttributeCount);
static_assert(NOTIFICATION_PASSWORD == kPasswordAttribute);

// The same functions for each list, by its name in theirs.
#define LORNIX_LIST(Name, list)                                                                              \
    int load##Name(void)                                                                                     \
    {                                                                                                        \
        return reporting(0, [] { return lornix::list.load() ? 1 : 0; });                                     \
    }                                                                                                        \
    void remove##Name(uint32_t index)                                                                        \
    {                                                                                                        \
        lornix::list.remove(index);                                                                          \
    }                                                                                                        \
    void store##Name(void)                                                                                   \
    {                                                                                                        \
        reporting(false, [] { return lornix::list.store(); });                                               \
    }                                                                                                        \
    void free##Name(void)                                                                                    \
    {                                                                                                        \
        lornix::list.release();                                                                              \
    }

// For the lists that whoever enforces them reads.
#define LORNIX_APPLIED_LIST(Name, list)                                                                      \
    void apply##Name(void)                                                                                   \
    {                                                                                                        \
        reporting(false, [] { return lornix::list.apply(); });                                               \
    }

// For the lists whose entries are a text each.
#define LORNIX_TEXT_LIST(Name, list)                                                                         \
    const wchar_t* get##Name(uint32_t index)                                                                 \
    {                                                                                                        \
        return text(lornix::list, index);                                                                    \
    }                                                                                                        \
    uint32_t addTo##Name(const wchar_t* text)                                                                \
    {                                                                                                        \
        return reporting(PolicyList::kNone, [&] { return lornix::list.add(text); });                         \
    }                                                                                                        \
    void update##Name(uint32_t index, const wchar_t* text)                                                   \
    {                                                                                                        \
        reporting(false, [&] { return lornix::list.update(index, text), true; });                            \
    }

LORNIX_LIST(Notifications, notifications)
LORNIX_TEXT_LIST(Notifications, notifications)

LORNIX_LIST(Excludes, excludes)
LORNIX_APPLIED_LIST(Excludes, excludes)
LORNIX_TEXT_LIST(Excludes, excludes)

LORNIX_LIST(MgrAccounts, administrativeAccounts)
LORNIX_APPLIED_LIST(MgrAccounts, administrativeAccounts)
LORNIX_TEXT_LIST(MgrAccounts, administrativeAccounts)

LORNIX_LIST(BackupTools, backupTools)
LORNIX_APPLIED_LIST(BackupTools, backupTools)
LORNIX_TEXT_LIST(BackupTools, backupTools)

LORNIX_LIST(ExcludeExts, blockedExtensions)
LORNIX_APPLIED_LIST(ExcludeExts, blockedExtensions)

uint32_t getNotificationsCount(void)
{
    return notifications.count();
}

const wchar_t* getNAttr(uint32_t index, uint32_t attribute)
{
    const PolicyEntry* entry = notifications.at(index);
    return entry == nullptr || entry->attributes == nullptr || attribute >= kAttributeCount
               ? nullptr
               : entry->attributes->texts[attribute];
}

int32_t getINAttr(uint32_t index, uint32_t attribute)
{
    const wchar_t* value = getNAttr(index, attribute);
    return value == nullptr ? 0 : attributeNumber(reinterpret_cast<const char16_t*>(value));
}

void setNAttr(uint32_t index, uint32_t attribute, const wchar_t* text)
{
    reporting(false, [&] {
        notifications.setAttribute(index, attribute, text);
        return true;
    });
}

/* ---- blocked extensions ---- */

const wchar_t* getExcludeExtsPath(uint32_t index)
{
    return text(blockedExtensions, index);
}

const void* getExcludeExtsSid(uint32_t index)
{
    const PolicyEntry* entry = blockedExtensions.at(index);
    return entry == nullptr ? nullptr : entry->account;
}

uint32_t addToExcludeExts(const wchar_t* mask, const void* sid)
{
    return reporting(PolicyList::kNone, [&] {
        return isAccount(mask, sid) ? blockedExtensions.add(mask, sidBytes(sid)) : PolicyList::kNone;
    });
}

void updateExcludeExts(uint32_t index, const wchar_t* mask, const void* sid)
{
    reporting(false, [&] {
        if (isAccount(mask, sid)) {
            blockedExtensions.update(index, mask, sidBytes(sid));
        }
        return true;
    });
}

/* ---- what is active ---- */

void storeRulesFromDriver(const wchar_t* fileName)
{
    reporting(false, [&] { return fileName != nullptr && writeActiveExceptions(fileName); });
}
