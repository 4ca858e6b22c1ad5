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
    X(void, debug, (const QuotaRule* rule), (rule))
