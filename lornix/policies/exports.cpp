// The exports for the policy lists.
#include "lornix/last_error.h"
#include "lornix/policies/five_lists.h"
#include "lornix/sid.h"
#include "store/lornix.h"

namespace {

using lornix::PolicyEntry;
using lornix::PolicyList;
using lornix::reporting;

const wchar_t* text(PolicyList& list, uint32_t index)
{
    const PolicyEntry* entry = list.at(index);
    return entry == nullptr ? nullptr : entry->text;
}

/// @return false, the text that comes with an account released, when it is none: it must not turn into all accounts.
bool isAccount(PolicyList& list, const wchar_t* text, const void* sid)
{
    if (sid != nullptr && !lornix::isSid(sid)) {
        list.refuse(text);
        lornix::report(L"The account of a blocked extension is no valid SID.");
        return false;
    }
    return true;
}

} // namespace

static_assert(NOTIFICATION_ATTRIBUTE_COUNT == lornix::kAttributeCount);
static_assert(NOTIFICATION_PASSWORD == lornix::kPasswordAttribute);

// The same functions for each list, by its name in theirs.
#define LORNIX_LIST(Name, list)                                                                              \
    int load##Name(void)                                                                                     \
    {                                                                                                        \
        return reporting(0, [] { return lornix::list().load() ? 1 : 0; });                                   \
    }                                                                                                        \
    void remove##Name(uint32_t index)                                                                        \
    {                                                                                                        \
        lornix::list().remove(index);                                                                        \
    }                                                                                                        \
    void store##Name(void)                                                                                   \
    {                                                                                                        \
        reporting(false, [] { return lornix::list().store(); });                                             \
    }                                                                                                        \
    void free##Name(void)                                                                                    \
    {                                                                                                        \
        lornix::list().release();                                                                            \
    }

// For the lists that whoever enforces them reads.
#define LORNIX_APPLIED_LIST(Name, list)                                                                      \
    void apply##Name(void)                                                                                   \
    {                                                                                                        \
        reporting(false, [] { return lornix::list().apply(); });                                             \
    }

// For the lists whose entries are a text each.
#define LORNIX_TEXT_LIST(Name, list)                                                                         \
    const wchar_t* get##Name(uint32_t index)                                                                 \
    {                                                                                                        \
        return text(lornix::list(), index);                                                                  \
    }                                                                                                        \
    uint32_t addTo##Name(const wchar_t* text)                                                                \
    {                                                                                                        \
        return reporting(PolicyList::kNone, [&] { return lornix::list().add(text); });                       \
    }                                                                                                        \
    void update##Name(uint32_t index, const wchar_t* text)                                                   \
    {                                                                                                        \
        reporting(false, [&] { return lornix::list().update(index, text), true; });                          \
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
    return lornix::notifications().count();
}

const wchar_t* getNAttr(uint32_t index, uint32_t attribute)
{
    const PolicyEntry* entry = lornix::notifications().at(index);
    return entry == nullptr || entry->attributes == nullptr || attribute >= lornix::kAttributeCount
               ? nullptr
               : entry->attributes->texts[attribute];
}

int32_t getINAttr(uint32_t index, uint32_t attribute)
{
    const wchar_t* value = getNAttr(index, attribute);
    return value == nullptr ? 0 : lornix::attributeNumber(reinterpret_cast<const char16_t*>(value));
}

void setNAttr(uint32_t index, uint32_t attribute, const wchar_t* text)
{
    reporting(false, [&] {
        lornix::notifications().setAttribute(index, attribute, text);
        return true;
    });
}

/* ---- blocked extensions ---- */

const wchar_t* getExcludeExtsPath(uint32_t index)
{
    return text(lornix::blockedExtensions(), index);
}

const void* getExcludeExtsSid(uint32_t index)
{
    const PolicyEntry* entry = lornix::blockedExtensions().at(index);
    return entry == nullptr ? nullptr : entry->account;
}

uint32_t addToExcludeExts(const wchar_t* mask, const void* sid)
{
    return reporting(PolicyList::kNone, [&] {
        PolicyList& list = lornix::blockedExtensions();
        return isAccount(list, mask, sid) ? list.add(mask, lornix::sidBytes(sid)) : PolicyList::kNone;
    });
}

void updateExcludeExts(uint32_t index, const wchar_t* mask, const void* sid)
{
    reporting(false, [&] {
        PolicyList& list = lornix::blockedExtensions();
        if (isAccount(list, mask, sid)) {
            list.update(index, mask, lornix::sidBytes(sid));
        }
        return true;
    });
}

/* ---- what is active ---- */

void storeRulesFromDriver(const wchar_t* fileName)
{
    reporting(false, [&] { return fileName != nullptr && lornix::writeActiveExceptions(fileName); });
}
