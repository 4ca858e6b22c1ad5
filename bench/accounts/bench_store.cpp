// What the store answers.
#include "bench/support/account_sid.h"
#include "bench/support/sid_table.h"
#include "bench_accounts.h"

#include <cwchar>
#include <vector>

namespace {

int servedUsers = 0;
std::vector<std::wstring> fullNames;

wchar_t* getAccountBySidW(const void* sid, wchar_t* buffer, int)
{
    return std::wcscpy(buffer, servedFullName(static_cast<int>(AccountSid::numberOf(sid))));
}

// The machine's own accounts are asked for last with either source, and are all that there is on the store's.
SidList* enumerateUsers(const wchar_t* server, SidList* list)
{
    if (server != nullptr) {
        return list;
    }
    releaseAccounts(list);
    return listOfAccounts(0, servedUsers);
}

SidList* enumerateGroups(const wchar_t*, SidList* list)
{
    return list != nullptr ? list : listOfAccounts(0, 0);
}

StoreTable accountStore()
{
    StoreTable table = sidTable();
    table.getAccountBySidW = getAccountBySidW;
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
