// What the store answers.
#include "bench/support/account_sid.h"
#include "bench_accounts.h"
#include "corvane_types.h"
#include "tests/support/store_table.h"

#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cwchar>
#include <vector>

namespace {

int servedUsers = 0;
std::vector<std::wstring> fullNames;

// A list has room for the next power of two, so that a walk of many objects is not about copying lists.
SidList* makeList(int count)
{
    const std::size_t room = std::bit_ceil(static_cast<unsigned>(count));
    auto* list = static_cast<SidList*>(std::malloc(offsetof(SidList, sids) + room * sizeof(void*)));
    list->count = count;
    return list;
}

wchar_t* getAccountBySidW(const void* sid, wchar_t* buffer, int)
{
    return std::wcscpy(buffer, servedFullName(static_cast<int>(AccountSid::numberOf(sid))));
}

SidList* createEmptySidList()
{
    return makeList(0);
}

void freeSidList(SidList* list)
{
    for (int i = 0; list != nullptr && i < list->count; ++i) {
        std::free(list->sids[i]);
    }
    std::free(list);
}

SidList* appendToSidList(SidList* list, void* sid)
{
    const auto count = static_cast<unsigned>(list->count);
    if (std::has_single_bit(count)) {
        list = static_cast<SidList*>(std::realloc(list, offsetof(SidList, sids) + count * 2 * sizeof(void*)));
    }
    list->sids[count] = sid;
    ++list->count;
    return list;
}

SidList* appendToSidList2(SidList* destination, SidList* source)
{
    for (int i = 0; source != nullptr && i < source->count; ++i) {
        destination = appendToSidList(destination, AccountSid::copy(source->sids[i]));
    }
    return destination;
}

// The machine's own accounts are asked for last with either source, and are all that there is on the store's.
SidList* enumerateUsers(const wchar_t* server, SidList* list)
{
    if (server != nullptr) {
        return list;
    }
    freeSidList(list);
    list = makeList(servedUsers);
    for (int i = 0; i < servedUsers; ++i) {
        const AccountSid sid(static_cast<DWORD>(i));
        list->sids[i] = AccountSid::copy(&sid);
    }
    return list;
}

SidList* enumerateGroups(const wchar_t*, SidList* list)
{
    return list != nullptr ? list : createEmptySidList();
}

StoreTable accountStore()
{
    StoreTable table = emptyTable();
    table.sidDup = AccountSid::copy;
    table.sidcmp = AccountSid::compare;
    table.getAccountBySidW = getAccountBySidW;
    table.createEmptySidList = createEmptySidList;
    table.freeSidList = freeSidList;
    table.appendToSidList = appendToSidList;
    table.appendToSidList2 = appendToSidList2;
    table.enumerateUsers = enumerateUsers;
    table.enumerateGroups = enumerateGroups;
    return table;
}

} // namespace

void serveAccounts(int users, Source source)
{
    static const StoreTable store = accountStore();
    installStore(&store);
    servedUsers = source == Source::kStore ? users : 0;
    directoryUsers = source == Source::kDirectory ? users : 0;
    // Written beforehand: to format a text costs more than to hand it out.
    for (int number = static_cast<int>(fullNames.size()); number < users; ++number) {
        fullNames.push_back(accountFullName(number));
    }
}

const wchar_t* searchBase(Source source)
{
    return source == Source::kStore ? L"SERVER" : L"WinNT://CORP";
}

std::wstring accountName(int number)
{
    const wchar_t* start = number % 1000 == 0 ? L"bq" : number % 10 == 0 ? L"b" : L"a";
    wchar_t name[32];
    const auto scattered = static_cast<unsigned>(number) * 2654435761u;
    swprintf(name, 32, L"%ls%08x", start, scattered);
    return name;
}

std::wstring accountFullName(int number)
{
    return L"CORP\\" + accountName(number);
}

const wchar_t* servedFullName(int number)
{
    return fullNames[static_cast<std::size_t>(number)].c_str();
}
