// Groups, members and servers of a network, where the platform is a script or is asked itself.
#include "store_test.h"

#include "tests/support/faulting_call.h"
#include "tests/support/import_patch.h"

#include <lm.h>

namespace {

using namespace store_test;

std::vector<std::wstring> calls;

std::wstring orLocal(const wchar_t* server)
{
    return server == nullptr ? L"(here)" : server;
}

template <class Record>
LPBYTE netBuffer(const std::vector<Record>& records)
{
    constexpr std::size_t kMore = 200; // for what a record of the platform has behind those fields
    void* buffer = nullptr;
    NetApiBufferAllocate(static_cast<DWORD>(records.size() * sizeof(Record) + kMore), &buffer);
    memset(buffer, 0, records.size() * sizeof(Record) + kMore);
    memcpy(buffer, records.data(), records.size() * sizeof(Record));
    return static_cast<LPBYTE>(buffer);
}

using NetworkAccountsTest = StoreTest; // so that no file of accounts answers

NET_API_STATUS WINAPI membersInPages(const wchar_t* server, const wchar_t* group, DWORD level, LPBYTE* buffer,
                                     DWORD, DWORD* count, DWORD* total, DWORD_PTR* resume)
{
    EXPECT_EQ(level, 0u);
    calls.push_back(orLocal(server) + L" local " + group);
    static std::vector<Block<void>> sids;
    std::vector<LOCALGROUP_MEMBERS_INFO_0> page;
    for (int i = 0; i < 2; ++i) {
        sids.push_back(sidOf(L"S-1-5-21-7-8-9-" + std::to_wstring(*resume * 2 + static_cast<DWORD_PTR>(i))));
        page.push_back({sids.back().get()});
    }
    *buffer = netBuffer(page);
    *count = 2;
    *total = 6;
    return ++*resume < 3 ? ERROR_MORE_DATA : NERR_Success;
}

NET_API_STATUS WINAPI noGlobalGroup(const wchar_t* server, const wchar_t* group, DWORD, LPBYTE*, DWORD,
                                    DWORD*, DWORD*, DWORD_PTR*)
{
    calls.push_back(orLocal(server) + L" global " + group);
    return NERR_GroupNotFound;
}

NET_API_STATUS WINAPI noLocalGroup(const wchar_t*, const wchar_t*, DWORD, LPBYTE*, DWORD, DWORD*, DWORD*,
                                   DWORD_PTR*)
{
    return NERR_GroupNotFound;
}

NET_API_STATUS WINAPI membersByName(const wchar_t*, const wchar_t*, DWORD level, LPBYTE* buffer, DWORD,
                                    DWORD* count, DWORD* total, DWORD_PTR* resume)
{
    EXPECT_EQ(level, 0u);
    static wchar_t system[] = L"SYSTEM";
    static wchar_t unknown[] = L"no such account at all";
    static wchar_t everyone[] = L"Everyone";
    *buffer = *resume == 0 ? netBuffer<GROUP_USERS_INFO_0>({{system}, {unknown}})
                           : netBuffer<GROUP_USERS_INFO_0>({{everyone}});
    *count = *resume == 0 ? 2 : 1;
    *total = 3;
    return ++*resume < 2 ? ERROR_MORE_DATA : NERR_Success;
}

TEST_F(NetworkAccountsTest, MembersThatNobodyKnowsAreLeftOut)
{
    const ImportPatch local(storeModule(), "NetLocalGroupGetMembers", &noLocalGroup);
    const ImportPatch global(storeModule(), "NetGroupGetUsers", &membersByName);
    const Sids members(enumerateGroupUsers(nullptr, L"Staff", nullptr));
    EXPECT_EQ(textsOf(members.get()), (std::vector<std::wstring>{L"S-1-5-18", L"S-1-1-0"}));
}

TEST_F(NetworkAccountsTest, GroupMayBeNamedWithItsDomain)
{
    const ImportPatch local(storeModule(), "NetLocalGroupGetMembers", &membersInPages);
    const ImportPatch global(storeModule(), "NetGroupGetUsers", &noGlobalGroup);
    EXPECT_EQ(textsOf(Sids(enumerateGroupUsers(nullptr, L"BUILTIN\\Administrators", nullptr)).get()).size(),
              6u);
    EXPECT_EQ(calls.front(), L"(here) local Administrators");
}

TEST_F(NetworkAccountsTest, AGroupOfAnotherDomainIsNotTakenForOneHere)
{
    const ImportPatch local(storeModule(), "NetLocalGroupGetMembers", &membersInPages);
    const ImportPatch global(storeModule(), "NetGroupGetUsers", &noGlobalGroup);
    EXPECT_EQ(enumerateGroupUsers(nullptr, L"ELSEWHERE\\Administrators", nullptr), nullptr);
    EXPECT_TRUE(calls.empty());
}

NET_API_STATUS WINAPI emptyForEver(const wchar_t*, const wchar_t*, DWORD, LPBYTE* buffer, DWORD, DWORD* count,
                                   DWORD* total, DWORD_PTR*)
{
    *buffer = netBuffer<LOCALGROUP_MEMBERS_INFO_0>({});
    *count = 0;
    *total = 100;
    return ERROR_MORE_DATA;
}

TEST_F(NetworkAccountsTest, AServerThatNeverComesToAnEndIsLeft)
{
    const ImportPatch local(storeModule(), "NetLocalGroupGetMembers", &emptyForEver);
    const ImportPatch global(storeModule(), "NetGroupGetUsers", &noGlobalGroup);
    EXPECT_EQ(enumerateGroupUsers(L"SERVER", L"Users", nullptr), nullptr);
}

NET_API_STATUS WINAPI placeholder(const wchar_t*, const wchar_t*, DWORD, LPBYTE*, DWORD, DWORD*, DWORD*,
                                  DWORD_PTR*)
{
    // The runtime reads the names of the module and the function before it looks for a handler.
    const ULONG_PTR names[] = {reinterpret_cast<ULONG_PTR>("netapi32"),
                               reinterpret_cast<ULONG_PTR>("NetGroupGetUsers")};
    RaiseException(0x80000100, EXCEPTION_NONCONTINUABLE, static_cast<DWORD>(std::size(names)), names);
    return NERR_Success;
}

TEST_F(NetworkAccountsTest, APlaceholderForAFunctionIsARefusal)
{
    const ImportPatch local(storeModule(), "NetLocalGroupGetMembers", &membersInPages);
    const ImportPatch global(storeModule(), "NetGroupGetUsers", &placeholder);
    EXPECT_EQ(textsOf(Sids(enumerateGroupUsers(nullptr, L"Users", nullptr)).get()).size(), 6u);
}

NET_API_STATUS WINAPI faulting(const wchar_t*, const wchar_t*, DWORD, LPBYTE*, DWORD, DWORD*, DWORD*,
                               DWORD_PTR*)
{
    RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    return NERR_Success;
}

TEST_F(NetworkAccountsTest, AnotherFaultGoesOnToTheCaller)
{
    {
        const ImportPatch global(storeModule(), "NetGroupGetUsers", &faulting);
        EXPECT_EQ(faultOf([] { freeSidList(enumerateGroupUsers(nullptr, L"Users", nullptr)); }),
                  EXCEPTION_ACCESS_VIOLATION)
            << "a caller's guard is there to log it";
    }
    EXPECT_EQ(faultOf([] { freeSidList(enumerateGroupUsers(nullptr, L"Users", nullptr)); }), 0u);
}

TEST_F(NetworkAccountsTest, MissingNames)
{
    EXPECT_EQ(enumerateGroupUsers(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(enumerateGroupUsers(nullptr, L"", nullptr), nullptr);
    const Sids list(createEmptySidList());
    EXPECT_EQ(enumerateGroupUsers(L"SERVER", nullptr, list.get()), list.get());
    EXPECT_EQ(getDomainServerByName(nullptr), nullptr);
    EXPECT_EQ(getDomainServerByName(L""), nullptr);
}

TEST_F(NetworkAccountsTest, AccountsOfThisMachine)
{
    // What there is differs from machine to machine; that it is accounts does not.
    for (const Sids& list : {Sids(enumerateUsers(nullptr, nullptr)), Sids(enumerateGroups(nullptr, nullptr)),
                             Sids(enumerateGroupUsers(nullptr, L"Administrators", nullptr))})
    {
        for (const std::wstring& text : textsOf(list.get())) {
            EXPECT_TRUE(text.starts_with(L"S-1-5-")) << testing::PrintToString(text);
        }
    }
    EXPECT_FALSE(textsOf(Sids(enumerateUsers(nullptr, nullptr)).get()).empty());
}

wchar_t firstServer[] = L"\\\\DC1";
wchar_t secondServer[] = L"\\\\DC2";

DWORD WINAPI scriptedController(const wchar_t*, const wchar_t*, GUID*, const wchar_t*, ULONG, void** info)
{
    // The record that the platform gives starts with the server's name.
    *info = netBuffer<wchar_t*>({firstServer});
    return ERROR_SUCCESS;
}

NET_API_STATUS WINAPI scriptedPrimary(const wchar_t*, const wchar_t*, LPBYTE* buffer)
{
    *buffer = netBuffer(std::vector<wchar_t>(secondServer, secondServer + std::size(secondServer)));
    return NERR_Success;
}

TEST_F(NetworkAccountsTest, DomainServersAreNamedWithoutBackslashes)
{
    const ImportPatch controller(storeModule(), "DsGetDcNameW", &scriptedController);
    const ImportPatch primary(storeModule(), "NetGetDCName", &scriptedPrimary);
    ASSERT_EQ(controller.count() + primary.count(), 2);
    EXPECT_STREQ(Block<wchar_t>(getDomainServer()).get(), L"DC1");
    EXPECT_STREQ(Block<wchar_t>(getDomainServerByName(L"DC1")).get(), L"DC2");
    EXPECT_EQ(getDomainServerByName(L"dc2"), nullptr) << "not the same once more";
    EXPECT_EQ(getDomainServerByName(L"\\\\DC2"), nullptr);
}

} // namespace
