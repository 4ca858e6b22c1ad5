// The functions of the quota store, a line each:
//   X(result, name, (parameters), (arguments))
// A new function of store/lornix.h needs its line here and nothing else: it is then forwarded, recorded, can be
// scripted and can be made to fail. ODS is not in the list, because its arguments are formatted on the way.
#pragma once

#define STORE_FUNCTIONS(X)                                                                                   \
    X(QuotaRule*, getQuotaList, (const wchar_t* folder), (folder))                                           \
    X(int64_t, getRealSize, (const wchar_t* folder), (folder))                                               \
    X(int64_t, getRealSizeByOwner, (const wchar_t* folder, const SidList* accounts), (folder, accounts))     \
    X(void, addToTrackList, (const QuotaRule* rule), (rule))                                                 \
    X(PathList*, getKnownPaths, (), ())                                                                      \
    X(PathList*, appendToPaths, (PathList * list, const wchar_t* folder), (list, folder))                    \
    X(void, storeKnownPaths, (const PathList* list), (list))                                                 \
    X(void, freePathList, (PathList * list), (list))                                                         \
    X(SidList*, enumerateGroupUsers, (const wchar_t* server, const wchar_t* group, SidList* list),           \
      (server, group, list))                                                                                 \
    X(SidList*, enumerateUsers, (const wchar_t* server, SidList* list), (server, list))                      \
    X(SidList*, enumerateGroups, (const wchar_t* server, SidList* list), (server, list))                     \
    X(wchar_t*, getDomainServer, (), ())                                                                     \
    X(wchar_t*, getDomainServerByName, (const wchar_t* server), (server))                                    \
    X(void*, getDomainSid, (), ())                                                                           \
    X(void*, getSidByNameW, (const wchar_t* name), (name))                                                   \
    X(SidList*, createEmptySidList, (), ())                                                                  \
    X(SidList*, appendToSidList, (SidList * list, void* sid), (list, sid))                                   \
    X(SidList*, appendToSidList2, (SidList * destination, SidList * source), (destination, source))          \
    X(void, freeSidList, (SidList * list), (list))                                                           \
    X(void*, sidDup, (const void* sid), (sid))                                                               \
    X(int, sidcmp, (const void* a, const void* b), (a, b))                                                   \
    X(wchar_t*, getAccountBySidW, (const void* sid, wchar_t* buffer, int capacity), (sid, buffer, capacity)) \
    X(void, getTextualSidW, (const void* sid, wchar_t* buffer, int capacity), (sid, buffer, capacity))       \
    X(int, loadNotifications, (), ())                                                                        \
    X(uint32_t, getNotificationsCount, (), ())                                                               \
    X(const wchar_t*, getNotifications, (uint32_t index), (index))                                           \
    X(const wchar_t*, getNAttr, (uint32_t index, uint32_t attribute), (index, attribute))                    \
    X(int32_t, getINAttr, (uint32_t index, uint32_t attribute), (index, attribute))                          \
    X(void, setNAttr, (uint32_t index, uint32_t attribute, const wchar_t* text), (index, attribute, text))   \
    X(uint32_t, addToNotifications, (const wchar_t* script), (script))                                       \
    X(void, updateNotifications, (uint32_t index, const wchar_t* script), (index, script))                   \
    X(void, removeNotifications, (uint32_t index), (index))                                                  \
    X(void, storeNotifications, (), ())                                                                      \
    X(void, freeNotifications, (), ())                                                                       \
    X(int, loadExcludes, (), ())                                                                             \
    X(const wchar_t*, getExcludes, (uint32_t index), (index))                                                \
    X(uint32_t, addToExcludes, (const wchar_t* path), (path))                                                \
    X(void, updateExcludes, (uint32_t index, const wchar_t* path), (index, path))                            \
    X(void, removeExcludes, (uint32_t index), (index))                                                       \
    X(void, storeExcludes, (), ())                                                                           \
    X(void, applyExcludes, (), ())                                                                           \
    X(void, freeExcludes, (), ())                                                                            \
    X(int, loadExcludeExts, (), ())                                                                          \
    X(const wchar_t*, getExcludeExtsPath, (uint32_t index), (index))                                         \
    X(const void*, getExcludeExtsSid, (uint32_t index), (index))                                             \
    X(uint32_t, addToExcludeExts, (const wchar_t* mask, const void* sid), (mask, sid))                       \
    X(void, updateExcludeExts, (uint32_t index, const wchar_t* mask, const void* sid), (index, mask, sid))   \
    X(void, removeExcludeExts, (uint32_t index), (index))                                                    \
    X(void, storeExcludeExts, (), ())                                                                        \
    X(void, applyExcludeExts, (), ())                                                                        \
    X(void, freeExcludeExts, (), ())                                                                         \
    X(int, loadMgrAccounts, (), ())                                                                          \
    X(const wchar_t*, getMgrAccounts, (uint32_t index), (index))                                             \
    X(uint32_t, addToMgrAccounts, (const wchar_t* name), (name))                                             \
    X(void, updateMgrAccounts, (uint32_t index, const wchar_t* name), (index, name))                         \
    X(void, removeMgrAccounts, (uint32_t index), (index))                                                    \
    X(void, storeMgrAccounts, (), ())                                                                        \
    X(void, applyMgrAccounts, (), ())                                                                        \
    X(void, freeMgrAccounts, (), ())                                                                         \
    X(int, loadBackupTools, (), ())                                                                          \
    X(const wchar_t*, getBackupTools, (uint32_t index), (index))                                             \
    X(uint32_t, addToBackupTools, (const wchar_t* name), (name))                                             \
    X(void, updateBackupTools, (uint32_t index, const wchar_t* name), (index, name))                         \
    X(void, removeBackupTools, (uint32_t index), (index))                                                    \
    X(void, storeBackupTools, (), ())                                                                        \
    X(void, applyBackupTools, (), ())                                                                        \
    X(void, freeBackupTools, (), ())                                                                         \
    X(void, storeRulesFromDriver, (const wchar_t* fileName), (fileName))                                     \
    X(void, debug, (const QuotaRule* rule), (rule))
