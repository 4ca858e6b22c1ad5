/* lornix.h - the functions of the quota store library lornix.dll that corvane calls.
 *
 * Plain C exports of lornix.dll, undecorated. Strings are zero-terminated UTF-16 unless stated; sizes are bytes,
 * signed 64-bit. A SID is the platform's binary security identifier, passed as an opaque pointer. "malloc" is
 * the shared C runtime's: either side may release such a block with free. No function reports an error unless
 * stated; a store that cannot answer gives null, 0 or nothing.
 *
 * Threads     Functions are called on the host's user-interface thread. While an account list fills, its fill
 *             thread calls these beside that thread, at the same time: getDomainServer, getDomainServerByName,
 *             enumerateUsers, enumerateGroups, createEmptySidList, appendToSidList, appendToSidList2,
 *             freeSidList, sidDup, sidcmp, getAccountBySidW and ODS. A store keeps them apart itself. A fill
 *             goes on to its next look at the list's window when its dialog is closed, so the user-interface
 *             thread may meanwhile be anywhere in this header. There is one fill at a time.
 */
#ifndef STORE_LORNIX_H
#define STORE_LORNIX_H

#include "corvane_types.h"

#ifdef LORNIX_BUILDING
#define LORNIX_API
#else
#define LORNIX_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- rules ---------------------------------------------------------------------------------------------- */

/** All rules defined on one folder.
 * @param folder  folder path; not null. Compared without regard to case and to the kind of slash.
 * @return first record of a chain linked by next and prev, or null when the folder has none. Every record,
 *         with its path and sid, is a fresh allocation and passes to the caller. No path is null, and no hard
 *         limit 0: callers divide by it.
 */
LORNIX_API QuotaRule* getQuotaList(const wchar_t* folder);

/** Bytes of all files that exist under a folder now. May be slow, and may fault: callers guard it.
 * @return bytes; 0 for a folder that cannot be read; a negative result is to be read as 0.
 */
LORNIX_API int64_t getRealSize(const wchar_t* folder);

/** Bytes under a folder in files owned by one of the listed accounts.
 * @param accounts  not null; only read.
 */
LORNIX_API int64_t getRealSizeByOwner(const wchar_t* folder, const SidList* accounts);

/** Remembers a rule made for a group, so that accounts that join the group later get the same limits.
 * @param rule  only read; stays the caller's. Only the record itself counts, not what it is linked to.
 */
LORNIX_API void addToTrackList(const QuotaRule* rule);

/* ---- known folders -------------------------------------------------------------------------------------- */

/** The folders that carry rules, as last stored.
 * @return a list for appendToPaths, storeKnownPaths and freePathList; null or empty when there are none.
 */
LORNIX_API PathList* getKnownPaths(void);

/** Adds a folder to a list.
 * @param list    from getKnownPaths or appendToPaths, or null for a new list. Not to be used afterwards.
 * @param folder  copied.
 * @return the list, which may have moved.
 */
LORNIX_API PathList* appendToPaths(PathList* list, const wchar_t* folder);

/** Makes a list persistent in place of the one stored before.
 * @param list  stays the caller's; null is an empty one.
 */
LORNIX_API void storeKnownPaths(const PathList* list);

/** Releases a list that getKnownPaths or appendToPaths gave, with its paths. Null is allowed. */
LORNIX_API void freePathList(PathList* list);

/* ---- accounts ------------------------------------------------------------------------------------------- */

/** Appends the members of a group, as one server knows it, to a list.
 * @param server  server name, or null for this machine.
 * @param group   account name of the group.
 * @param list    list to grow, or null for a new one. Not to be used afterwards.
 * @return the grown list, which may have moved; null when there is none.
 */
LORNIX_API SidList* enumerateGroupUsers(const wchar_t* server, const wchar_t* group, SidList* list);

/** Appends the users that one server knows to a list.
 * @param server  server name, or null for this machine.
 * @param list    list to grow, or null for a new one. Not to be used afterwards.
 * @return the grown list, which may have moved; null when there is none.
 */
LORNIX_API SidList* enumerateUsers(const wchar_t* server, SidList* list);

/** Appends the groups that one server knows to a list. Arguments and result as for enumerateUsers. */
LORNIX_API SidList* enumerateGroups(const wchar_t* server, SidList* list);

/** @return the name of a server of this machine's domain, a malloc copy for the caller; null without a domain. */
LORNIX_API wchar_t* getDomainServer(void);

/** The second server to ask beside a domain server.
 * @return a malloc copy for the caller; null when there is none.
 */
LORNIX_API wchar_t* getDomainServerByName(const wchar_t* server);

/** @return the SID of this machine's domain, a malloc copy for the caller; null without a domain. */
LORNIX_API void* getDomainSid(void);

/** @return the SID of the account with a name, NAME or DOMAIN\NAME, a malloc copy for the caller; null when the
 *          name is not known. */
LORNIX_API void* getSidByNameW(const wchar_t* name);

/** @return a new empty list, released with freeSidList. */
LORNIX_API SidList* createEmptySidList(void);

/** Appends one SID.
 * @param list  not to be used afterwards.
 * @param sid   passes to the list: hand over a copy made by sidDup.
 * @return the list, which may have moved.
 */
LORNIX_API SidList* appendToSidList(SidList* list, void* sid);

/** Appends all SIDs of one list to another.
 * @param destination  list to grow, from the store. Not to be used afterwards.
 * @param source       list whose SIDs are appended; null appends nothing.
 * @return the resulting list, which may have moved, and may be `source` itself: `source` is to be released with
 *         freeSidList only when the result is another list.
 */
LORNIX_API SidList* appendToSidList2(SidList* destination, SidList* source);

/** Releases a list and the SIDs that it holds. Null is allowed. */
LORNIX_API void freeSidList(SidList* list);

/** @return a copy of a SID from malloc, or null when the SID is null or invalid. */
LORNIX_API void* sidDup(const void* sid);

/** Compares two SIDs; null is unequal to any SID. Never called with two equal pointers.
 * @return 0 when equal.
 */
LORNIX_API int sidcmp(const void* a, const void* b);

/** Name of an account, in the form DOMAIN\name.
 * @param buffer    receives the name.
 * @param capacity  characters that the buffer holds, with the terminator.
 * @return buffer, or null when the account is unknown.
 */
LORNIX_API wchar_t* getAccountBySidW(const void* sid, wchar_t* buffer, int capacity);

/** Textual form of a SID, S-1-...
 * @param buffer    receives the text; an empty text when the SID is null or invalid.
 * @param capacity  characters that the buffer holds, with the terminator.
 */
LORNIX_API void getTextualSidW(const void* sid, wchar_t* buffer, int capacity);

/* ---- policy lists --------------------------------------------------------------------------------------- */
/* Each list lives in the store's memory between its load and its free call, where its entries are added, changed
 * and removed; only its store call makes it persistent. One user of a list at a time.
 *
 * Entries go by an index, which runs from 0 without a gap right after the load. While the list is loaded, an
 * entry keeps its index, also when others are removed: editors hold on to the indexes that they have shown.
 *
 * Strings that the get functions give belong to the store and are valid until the entry changes or the list is
 * freed. Strings handed in are malloc blocks that pass to the store; the caller does not release them. The
 * string that the store itself gave for an entry may be handed back for it. An empty string is an entry too.
 */

/** Loads the notifications: scripts that run when a limit is exceeded.
 * @return non-zero when they could be read; otherwise the list is empty. */
LORNIX_API int loadNotifications(void);

/** @return the number of notifications. */
LORNIX_API uint32_t getNotificationsCount(void);

/** @return the script path of a notification; null when there is none with that index. */
LORNIX_API const wchar_t* getNotifications(uint32_t index);

/** Attributes of a notification, kept as text. */
#define NOTIFICATION_ACCOUNT 0u /**< the account that the script runs for, see NOTIFICATION_FOR_WHOM */
#define NOTIFICATION_FOR_WHOM                                                                                \
    1u                         /**< 0 anyone, 1 the account, 2 users of the limit, 3 users not of the limit */
#define NOTIFICATION_RATE 2u   /**< least seconds between two runs for one limit; -1 none; 0 as 86400 */
#define NOTIFICATION_RUN_AS 3u /**< account that the script runs as */
#define NOTIFICATION_PASSWORD 4u      /**< password of that account; never to be kept in clear text */
#define NOTIFICATION_MIN_INCREMENT 5u /**< growth smaller than this is ignored; a size text */
#define NOTIFICATION_ATTRIBUTE_COUNT 6u

/** @return an attribute of a notification, null when it is not set. */
LORNIX_API const wchar_t* getNAttr(uint32_t index, uint32_t attribute);

/** An attribute read as a number, with an optional unit letter K, M, G or T.
 * @return 0 for one that is not set or holds no number. */
LORNIX_API int32_t getINAttr(uint32_t index, uint32_t attribute);

/** Sets an attribute of a notification.
 * @param text  passes to the store; null leaves the attribute not set. */
LORNIX_API void setNAttr(uint32_t index, uint32_t attribute, const wchar_t* text);

/** Adds a notification without attributes. @return its index. */
LORNIX_API uint32_t addToNotifications(const wchar_t* script);

/** Changes the script of a notification. */
LORNIX_API void updateNotifications(uint32_t index, const wchar_t* script);

/** Removes a notification. */
LORNIX_API void removeNotifications(uint32_t index);

/** Makes the list persistent. */
LORNIX_API void storeNotifications(void);

/** Drops the list from memory. */
LORNIX_API void freeNotifications(void);

/** Loads the exception files: files and paths that are not accounted for.
 * @return non-zero when they could be read; otherwise the list is empty. */
LORNIX_API int loadExcludes(void);

/** @return the path of an entry, null when there is none with that index. */
LORNIX_API const wchar_t* getExcludes(uint32_t index);

/** Adds a path. @return its index. */
LORNIX_API uint32_t addToExcludes(const wchar_t* path);

/** Changes the path of an entry. */
LORNIX_API void updateExcludes(uint32_t index, const wchar_t* path);

/** Removes an entry. */
LORNIX_API void removeExcludes(uint32_t index);

/** Makes the list persistent. */
LORNIX_API void storeExcludes(void);

/** Makes the list active. */
LORNIX_API void applyExcludes(void);

/** Drops the list from memory. */
LORNIX_API void freeExcludes(void);

/** Loads the blocked file masks.
 * @return non-zero when they could be read; otherwise the list is empty. */
LORNIX_API int loadExcludeExts(void);

/** @return the path mask of an entry, null when there is none with that index. */
LORNIX_API const wchar_t* getExcludeExtsPath(uint32_t index);

/** @return the account that a mask is blocked for, owned by the store; null for all accounts. */
LORNIX_API const void* getExcludeExtsSid(uint32_t index);

/** Adds a mask.
 * @param mask  passes to the store.
 * @param sid   account, null for all; copied.
 * @return its index. */
LORNIX_API uint32_t addToExcludeExts(const wchar_t* mask, const void* sid);

/** Changes an entry. Arguments as for addToExcludeExts. */
LORNIX_API void updateExcludeExts(uint32_t index, const wchar_t* mask, const void* sid);

/** Removes an entry. */
LORNIX_API void removeExcludeExts(uint32_t index);

/** Makes the list persistent. */
LORNIX_API void storeExcludeExts(void);

/** Makes the list active. */
LORNIX_API void applyExcludeExts(void);

/** Drops the list from memory. */
LORNIX_API void freeExcludeExts(void);

/** Loads the accounts that may administer quotas.
 * @return non-zero when they could be read; otherwise the list is empty. */
LORNIX_API int loadMgrAccounts(void);

/** @return the account name of an entry, null when there is none with that index. */
LORNIX_API const wchar_t* getMgrAccounts(uint32_t index);

/** Adds an account name. @return its index. */
LORNIX_API uint32_t addToMgrAccounts(const wchar_t* name);

/** Changes the account name of an entry. */
LORNIX_API void updateMgrAccounts(uint32_t index, const wchar_t* name);

/** Removes an entry. */
LORNIX_API void removeMgrAccounts(uint32_t index);

/** Makes the list persistent. */
LORNIX_API void storeMgrAccounts(void);

/** Makes the list active. */
LORNIX_API void applyMgrAccounts(void);

/** Drops the list from memory. */
LORNIX_API void freeMgrAccounts(void);

/** Loads the backup tools: programs whose activity is not charged.
 * @return non-zero when they could be read; otherwise the list is empty. */
LORNIX_API int loadBackupTools(void);

/** @return the image name of an entry, null when there is none with that index. */
LORNIX_API const wchar_t* getBackupTools(uint32_t index);

/** Adds an image name. @return its index. */
LORNIX_API uint32_t addToBackupTools(const wchar_t* name);

/** Changes the image name of an entry. */
LORNIX_API void updateBackupTools(uint32_t index, const wchar_t* name);

/** Removes an entry. */
LORNIX_API void removeBackupTools(uint32_t index);

/** Makes the list persistent. */
LORNIX_API void storeBackupTools(void);

/** Makes the list active. */
LORNIX_API void applyBackupTools(void);

/** Drops the list from memory. */
LORNIX_API void freeBackupTools(void);

/** Writes the exceptions that are active, as the driver has them, to a file of the store.
 * @param fileName  name without a folder. */
LORNIX_API void storeRulesFromDriver(const wchar_t* fileName);

/* ---- diagnostics ---------------------------------------------------------------------------------------- */

/** Dumps the chain that starts at a record to the debug channel.
 * @param rule  first record to dump; null dumps nothing.
 */
LORNIX_API void debug(const QuotaRule* rule);

/** Emits one line to the debug channel.
 * @param format  8-bit printf format; wide strings as %ls. The line end is part of the format.
 */
LORNIX_API void ODS(const char* format, ...);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif
