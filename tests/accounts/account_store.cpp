#define LORNIX_BUILDING
#include "account_store.h"

#include "frame/platform.h"
#include "journal.h"
#include "store/lornix.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unordered_map>

AccountStore store;

namespace {

constexpr int kSidBytes = 28;
using SidBytes = std::array<unsigned char, kSidBytes>;

std::map<unsigned, SidBytes> testSids;
std::unordered_map<const SidList*, int> listNumbers;
int lastListNumber = 0;
std::vector<std::unique_ptr<unsigned char[]>> presetBlocks;
// Strings handed out and not freed. A fixed array: it is looked at inside free.
std::array<void*, 16> handedOut{};

std::string text(const SidList* list)
{
    if (list == nullptr) {
        return "null";
    }
    const auto found = listNumbers.find(list);
    if (found == listNumbers.end()) {
        return "stale list";
    }
    return found->second == 0 ? "presets" : "L" + std::to_string(found->second);
}

std::string text(const void* sid)
{
    return sid == nullptr ? "null" : std::to_string(sidNumber(sid));
}

SidList* newList(int number, int32_t count)
{
    auto* const list =
        static_cast<SidList*>(std::malloc(sizeof(SidList) + sizeof(void*) * static_cast<std::size_t>(count)));
    list->count = count;
    listNumbers[list] = number;
    return list;
}

/// A list of the same number with room for more. It always moves, so that nobody gets away with an old pointer.
SidList* grow(SidList* list, int more)
{
    if (list == nullptr) {
        ++store.lists;
        return newList(++lastListNumber, more);
    }
    if (listNumbers.at(list) == 0) {
        journal.note("THE CALLER'S LIST GROWS");
    }
    SidList* const moved = newList(listNumbers.at(list), list->count + more);
    std::copy(list->sids, list->sids + list->count, moved->sids);
    if (listNumbers.at(list) != 0) {
        listNumbers.erase(list);
        std::free(list);
    }
    return moved;
}

void* copySid(const void* sid)
{
    void* const copy = std::malloc(kSidBytes);
    std::copy_n(static_cast<const unsigned char*>(sid), kSidBytes, static_cast<unsigned char*>(copy));
    ++store.sids;
    return copy;
}

wchar_t* handOut(const std::wstring& string)
{
    wchar_t* const copy = _wcsdup(string.c_str());
    *std::find(handedOut.begin(), handedOut.end(), nullptr) = copy;
    return copy;
}

SidList* enumerate(const char* function, const std::map<std::wstring, std::vector<unsigned>>& accounts,
                   const wchar_t* server, SidList* list)
{
    journal.call(function, narrow(server) + ", " + text(list));
    if (store.givesNull.contains(std::string(function) + "(" + narrow(server) + ")")) {
        if (list != nullptr) {
            freeSidList(list);
        }
        return nullptr;
    }
    const auto found = accounts.find(server != nullptr ? server : L"");
    if (found == accounts.end()) {
        return list != nullptr ? list : grow(nullptr, 0);
    }
    const int before = list != nullptr ? list->count : 0;
    SidList* const grown = grow(list, static_cast<int>(found->second.size()));
    for (std::size_t i = 0; i < found->second.size(); ++i) {
        grown->sids[before + static_cast<int>(i)] = copySid(testSid(found->second[i]));
    }
    return grown;
}

} // namespace

int AccountStore::strings() const
{
    return static_cast<int>(std::count_if(handedOut.begin(), handedOut.end(), [](void* p) { return p; }));
}

void forgetString(void* block)
{
    if (block != nullptr) {
        std::replace(handedOut.begin(), handedOut.end(), block, static_cast<void*>(nullptr));
    }
}

void resetStore()
{
    store = {};
    listNumbers.clear();
    lastListNumber = 0;
    presetBlocks.clear();
    handedOut = {};
}

void resetStoreNumbers()
{
    lastListNumber = 0;
}

void* testSid(unsigned number)
{
    const auto [place, fresh] = testSids.try_emplace(number);
    if (fresh) {
        SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
        void* const sid = place->second.data();
        InitializeSid(sid, &authority, 5);
        const DWORD parts[] = {21, 1, 2, 3, number};
        for (DWORD i = 0; i < 5; ++i) {
            *GetSidSubAuthority(sid, i) = parts[i];
        }
    }
    return place->second.data();
}

unsigned sidNumber(const void* sid)
{
    unsigned number = 0;
    if (sid != nullptr) {
        std::memcpy(&number, static_cast<const unsigned char*>(sid) + kSidBytes - sizeof(number),
                    sizeof(number));
    }
    return number;
}

void releaseSid(void* sid)
{
    if (sid != nullptr) {
        --store.sids;
        std::free(sid);
    }
}

SidList* makePresets(const std::vector<unsigned>& numbers)
{
    presetBlocks.push_back(
        std::make_unique<unsigned char[]>(sizeof(SidList) + sizeof(void*) * numbers.size()));
    auto* const list = reinterpret_cast<SidList*>(presetBlocks.back().get());
    list->count = static_cast<int32_t>(numbers.size());
    std::transform(numbers.begin(), numbers.end(), list->sids,
                   [](unsigned number) { return number != 0 ? testSid(number) : nullptr; });
    listNumbers[list] = 0;
    return list;
}

std::vector<unsigned> numbersOf(const SidList* list)
{
    std::vector<unsigned> numbers;
    for (int i = 0; list != nullptr && i < list->count; ++i) {
        numbers.push_back(sidNumber(list->sids[i]));
    }
    return numbers;
}

SidList* createEmptySidList()
{
    journal.call("createEmptySidList", "");
    ++store.lists;
    return newList(++lastListNumber, 0);
}

SidList* appendToSidList(SidList* list, void* sid)
{
    journal.call("appendToSidList", text(list) + ", " + text(sid));
    SidList* const grown = grow(list, 1);
    grown->sids[grown->count - 1] = sid;
    return grown;
}

SidList* appendToSidList2(SidList* destination, SidList* source)
{
    journal.call("appendToSidList2", text(destination) + ", " + text(source));
    if (source != nullptr && (source == store.givenBack || listNumbers.at(source) == store.givenBackNumber)) {
        if (destination != nullptr) {
            freeSidList(destination);
        }
        return source;
    }
    const int added = source != nullptr ? source->count : 0;
    SidList* const grown = grow(destination, added);
    for (int i = 0; i < added; ++i) {
        grown->sids[grown->count - added + i] = copySid(source->sids[i]);
    }
    return grown;
}

void freeSidList(SidList* list)
{
    journal.call("freeSidList", text(list));
    if (list == nullptr) {
        return;
    }
    if (listNumbers.at(list) == 0) {
        journal.note("THE CALLER'S LIST IS FREED");
        return;
    }
    for (int i = 0; i < list->count; ++i) {
        releaseSid(list->sids[i]);
    }
    listNumbers.erase(list);
    std::free(list);
    --store.lists;
}

void* sidDup(const void* sid)
{
    journal.call("sidDup", text(sid));
    return sid != nullptr ? copySid(sid) : nullptr;
}

int sidcmp(const void* a, const void* b)
{
    journal.call("sidcmp", text(a) + ", " + text(b));
    if (a == nullptr || b == nullptr || a == store.sidcmpLies || b == store.sidcmpLies) {
        return 1;
    }
    return std::equal(static_cast<const unsigned char*>(a), static_cast<const unsigned char*>(a) + kSidBytes,
                      static_cast<const unsigned char*>(b))
               ? 0
               : 1;
}

wchar_t* getAccountBySidW(const void* sid, wchar_t* buffer, int capacity)
{
    journal.call("getAccountBySidW", text(sid) + ", " + std::to_string(capacity));
    const auto found = store.names.find(sidNumber(sid));
    if (found == store.names.end()) {
        return nullptr;
    }
    const std::size_t length = std::min(found->second.size(), static_cast<std::size_t>(capacity) - 1);
    std::copy_n(found->second.c_str(), length, buffer);
    buffer[length] = L'\0';
    return buffer;
}

wchar_t* getDomainServer()
{
    journal.call("getDomainServer", "");
    return store.domainServer ? handOut(*store.domainServer) : nullptr;
}

wchar_t* getDomainServerByName(const wchar_t* server)
{
    journal.call("getDomainServerByName", narrow(server));
    const auto found = store.secondServers.find(server);
    return found != store.secondServers.end() ? handOut(found->second) : nullptr;
}

void* getDomainSid()
{
    journal.call("getDomainSid", "");
    return nullptr;
}

void* getSidByNameW(const wchar_t* name)
{
    journal.call("getSidByNameW", narrow(name));
    return nullptr;
}

SidList* enumerateUsers(const wchar_t* server, SidList* list)
{
    return enumerate("enumerateUsers", store.users, server, list);
}

SidList* enumerateGroups(const wchar_t* server, SidList* list)
{
    return enumerate("enumerateGroups", store.groups, server, list);
}

void ODS(const char* format, ...)
{
    char line[4096];
    va_list arguments{};
    va_start(arguments, format);
    _vsnprintf(line, sizeof(line) - 1, format, arguments);
    va_end(arguments);
    line[sizeof(line) - 1] = '\0';
    journal.call("ODS", line);
}
