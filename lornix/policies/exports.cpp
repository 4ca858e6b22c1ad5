// The exports for the policy lists.
#include "lornix/last_error.h"
#include "lornix/policies/five_lists.h"
#include "lornix/sid.h"
#include "store/lornix.h"

namespace {

using lornix::PolicyEntry;
using lornix::PolicyList;
using lornix::reporting;

int load(PolicyList& list)
{
    return reporting(0, [&] { return list.load() ? 1 : 0; });
}

const wchar_t* text(PolicyList& list, uint32_t index)
{
    const PolicyEntry* entry = list.at(index);
    return entry == nullptr ? nullptr : entry->text.get();
}

uint32_t add(PolicyList& list, const wchar_t* text)
{
    return reporting(PolicyList::kNone, [&] { return list.add(text); });
}

void update(PolicyList& list, uint32_t index, const wchar_t* text)
{
    reporting(false, [&] {
        list.update(index, text);
        return true;
    });
}

/// An account that comes with a text. @return nothing, the text released, for one that is none: it must not turn
/// into all accounts.
std::optional<lornix::Sid> accountOf(PolicyList& list, const wchar_t* text, const void* sid)
{
    if (sid != nullptr && !lornix::isSid(sid)) {
        list.refuse(text);
        lornix::report(L"The account of a blocked extension is no valid SID.");
        return std::nullopt;
    }
    return lornix::Sid(lornix::sidBytes(sid));
}

void store(PolicyList& list)
{
    reporting(false, [&] { return list.store(); });
}

void apply(PolicyList& list)
{
    reporting(false, [&] { return list.apply(); });
}

} // namespace

static_assert(NOTIFICATION_ATTRIBUTE_COUNT == lornix::kAttributeCount);
static_assert(NOTIFICATION_PASSWORD == lornix::kPasswordAttribute);

/* ---- notifications ---- */

int loadNotifications(void)
{
    return load(lornix::notifications());
}

uint32_t getNotificationsCount(void)
{
    return lornix::notifications().count();
}

const wchar_t* getNotifications(uint32_t index)
{
    return text(lornix::notifications(), index);
}

const wchar_t* getNAttr(uint32_t index, uint32_t attribute)
{
    const PolicyEntry* entry = lornix::notifications().at(index);
    return entry == nullptr || attribute >= lornix::kAttributeCount ? nullptr
                                                                    : entry->attributes[attribute].get();
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

uint32_t addToNotifications(const wchar_t* script)
{
    return add(lornix::notifications(), script);
}

void updateNotifications(uint32_t index, const wchar_t* script)
{
    update(lornix::notifications(), index, script);
}

void removeNotifications(uint32_t index)
{
    lornix::notifications().remove(index);
}

void storeNotifications(void)
{
    store(lornix::notifications());
}

void freeNotifications(void)
{
    lornix::notifications().release();
}

/* ---- exception files ---- */

int loadExcludes(void)
{
    return load(lornix::excludes());
}

const wchar_t* getExcludes(uint32_t index)
{
    return text(lornix::excludes(), index);
}

uint32_t addToExcludes(const wchar_t* path)
{
    return add(lornix::excludes(), path);
}

void updateExcludes(uint32_t index, const wchar_t* path)
{
    update(lornix::excludes(), index, path);
}

void removeExcludes(uint32_t index)
{
    lornix::excludes().remove(index);
}

void storeExcludes(void)
{
    store(lornix::excludes());
}

void applyExcludes(void)
{
    apply(lornix::excludes());
}

void freeExcludes(void)
{
    lornix::excludes().release();
}

/* ---- administrative accounts ---- */

int loadMgrAccounts(void)
{
    return load(lornix::administrativeAccounts());
}

const wchar_t* getMgrAccounts(uint32_t index)
{
    return text(lornix::administrativeAccounts(), index);
}

uint32_t addToMgrAccounts(const wchar_t* name)
{
    return add(lornix::administrativeAccounts(), name);
}

void updateMgrAccounts(uint32_t index, const wchar_t* name)
{
    update(lornix::administrativeAccounts(), index, name);
}

void removeMgrAccounts(uint32_t index)
{
    lornix::administrativeAccounts().remove(index);
}

void storeMgrAccounts(void)
{
    store(lornix::administrativeAccounts());
}

void applyMgrAccounts(void)
{
    apply(lornix::administrativeAccounts());
}

void freeMgrAccounts(void)
{
    lornix::administrativeAccounts().release();
}

/* ---- backup tools ---- */

int loadBackupTools(void)
{
    return load(lornix::backupTools());
}

const wchar_t* getBackupTools(uint32_t index)
{
    return text(lornix::backupTools(), index);
}

uint32_t addToBackupTools(const wchar_t* name)
{
    return add(lornix::backupTools(), name);
}

void updateBackupTools(uint32_t index, const wchar_t* name)
{
    update(lornix::backupTools(), index, name);
}

void removeBackupTools(uint32_t index)
{
    lornix::backupTools().remove(index);
}

void storeBackupTools(void)
{
    store(lornix::backupTools());
}

void applyBackupTools(void)
{
    apply(lornix::backupTools());
}

void freeBackupTools(void)
{
    lornix::backupTools().release();
}

/* ---- blocked extensions ---- */

int loadExcludeExts(void)
{
    return load(lornix::blockedExtensions());
}

const wchar_t* getExcludeExtsPath(uint32_t index)
{
    return text(lornix::blockedExtensions(), index);
}

const void* getExcludeExtsSid(uint32_t index)
{
    const PolicyEntry* entry = lornix::blockedExtensions().at(index);
    return entry == nullptr || entry->account.isEmpty() ? nullptr : entry->account.bytes().data();
}

uint32_t addToExcludeExts(const wchar_t* mask, const void* sid)
{
    return reporting(PolicyList::kNone, [&] {
        PolicyList& list = lornix::blockedExtensions();
        const auto account = accountOf(list, mask, sid);
        return account ? list.add(mask, *account) : PolicyList::kNone;
    });
}

void updateExcludeExts(uint32_t index, const wchar_t* mask, const void* sid)
{
    reporting(false, [&] {
        PolicyList& list = lornix::blockedExtensions();
        if (const auto account = accountOf(list, mask, sid)) {
            list.update(index, mask, *account);
        }
        return true;
    });
}

void removeExcludeExts(uint32_t index)
{
    lornix::blockedExtensions().remove(index);
}

void storeExcludeExts(void)
{
    store(lornix::blockedExtensions());
}

void applyExcludeExts(void)
{
    apply(lornix::blockedExtensions());
}

void freeExcludeExts(void)
{
    lornix::blockedExtensions().release();
}

/* ---- what is active ---- */

void storeRulesFromDriver(const wchar_t* fileName)
{
    reporting(false, [&] { return fileName != nullptr && lornix::writeActiveExceptions(fileName); });
}
