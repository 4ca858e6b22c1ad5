// Names of accounts and accounts of names, as the platform knows them.
#include "later_clock.h"
#include "store_test.h"

#include "tests/support/import_patch.h"

#include <algorithm>

namespace {

using namespace store_test;

// With a data folder of their own, so that no file of accounts answers.
using AccountNameTest = StoreTest;
using HostAccountNameTest = StoreTest;
using AccountSidTest = StoreTest;

std::wstring nameOf(const void* sid, int capacity = 256)
{
    std::wstring buffer(static_cast<std::size_t>(std::max(capacity, 1)) + 10, L'~');
    wchar_t* name = getAccountBySidW(sid, buffer.data(), capacity);
    if (name == nullptr) {
        EXPECT_EQ(buffer, std::wstring(buffer.size(), L'~')) << "nothing is written without a name";
        return L"(null)";
    }
    EXPECT_EQ(name, buffer.data());
    EXPECT_EQ(buffer.substr(static_cast<std::size_t>(capacity)), std::wstring(10, L'~'));
    return name;
}

TEST_F(AccountNameTest, DomainAndName)
{
    EXPECT_EQ(nameOf(sidOf(L"S-1-5-32-544").get()), L"BUILTIN\\Administrators");
    EXPECT_EQ(nameOf(sidOf(L"S-1-5-18").get()), L"NT AUTHORITY\\SYSTEM");
    EXPECT_EQ(nameOf(sidOf(L"S-1-1-0").get()), L"Everyone") << "no domain, no backslash";
}

TEST_F(AccountNameTest, UnknownAccountsHaveNone)
{
    EXPECT_EQ(nameOf(sidOf(L"S-1-5-21-1-2-3-4").get()), L"(null)");
    EXPECT_EQ(nameOf(nullptr), L"(null)");
    std::uint8_t invalid[] = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_EQ(nameOf(invalid), L"(null)");
}

TEST_F(AccountNameTest, ANameThatDoesNotFitIsNone)
{
    const Block<void> sid = sidOf(L"S-1-5-32-544");
    const int length = static_cast<int>(wcslen(L"BUILTIN\\Administrators"));
    EXPECT_EQ(nameOf(sid.get(), length + 1), L"BUILTIN\\Administrators");
    for (const int capacity : {length, length - 1, 1, 0, -1}) {
        EXPECT_EQ(nameOf(sid.get(), capacity), L"(null)") << capacity;
    }
    EXPECT_EQ(getAccountBySidW(sid.get(), nullptr, 100), nullptr);
}

int lookups = 0;

BOOL WINAPI countedLookup(const wchar_t* server, PSID sid, wchar_t* name, DWORD* nameLength, wchar_t* domain,
                          DWORD* domainLength, SID_NAME_USE* use)
{
    ++lookups;
    return LookupAccountSidW(server, sid, name, nameLength, domain, domainLength, use);
}

TEST_F(AccountNameTest, TheSameAccountIsLookedUpOnce)
{
    const ImportPatch lookup(storeModule(), "LookupAccountSidW", &countedLookup);
    ASSERT_EQ(lookup.count(), 1);
    lookups = 0;
    const Block<void> known = sidOf(L"S-1-5-32-546");
    const Block<void> unknown = sidOf(L"S-1-5-21-9-9-9-9");
    for (int i = 0; i < 1000; ++i) {
        nameOf(known.get());
        nameOf(Block<void>(sidDup(unknown.get())).get());
    }
    EXPECT_EQ(lookups, 2);
}

TEST_F(AccountNameTest, IsLookedUpAgainAfterAWhile)
{
    const ImportPatch lookup(storeModule(), "LookupAccountSidW", &countedLookup);
    const ImportPatch time(storeModule(), "GetTickCount64", &laterTime);
    ASSERT_EQ(time.count(), 1);
    const Block<void> sid = sidOf(L"S-1-5-32-547");
    nameOf(sid.get());
    lookups = 0;
    addedTime = 50000;
    nameOf(sid.get());
    EXPECT_EQ(lookups, 0);
    addedTime = 61000;
    nameOf(sid.get());
    EXPECT_EQ(lookups, 1) << "an account may have been renamed";
    addedTime = 0;
}

BOOL WINAPI knowNobody(const wchar_t*, PSID, wchar_t*, DWORD*, wchar_t*, DWORD*, SID_NAME_USE*)
{
    ++lookups;
    SetLastError(ERROR_NONE_MAPPED);
    return FALSE;
}

TEST_F(AccountNameTest, AHundredThousandAreRememberedAndThenTheOldestGoes)
{
    constexpr DWORD kMost = 100000;
    const ImportPatch lookup(storeModule(), "LookupAccountSidW", &knowNobody);
    const ImportPatch time(storeModule(), "GetTickCount64", &laterTime);
    ASSERT_EQ(time.count(), 1);
    const Block<void> sid = sidOf(L"S-1-5-21-2-2-2-0");
    wchar_t buffer[10];
    const auto ask = [&](DWORD number) {
        *GetSidSubAuthority(sid.get(), 4) = number;
        lookups = 0;
        EXPECT_EQ(getAccountBySidW(sid.get(), buffer, 10), nullptr);
        return lookups;
    };
    for (DWORD i = 0; i < kMost; ++i) {
        ASSERT_EQ(ask(i), 1) << i;
    }
    for (const DWORD i : {DWORD{0}, kMost / 2, kMost - 1}) {
        EXPECT_EQ(ask(i), 0) << i;
    }
    EXPECT_EQ(ask(kMost), 1);
    EXPECT_EQ(ask(1), 0);
    EXPECT_EQ(ask(0), 1) << "the oldest was forgotten";
}

TEST_F(HostAccountNameTest, ReadsAsAPersonWouldSayIt)
{
    const auto name = [](const void* sid, int capacity = 256) {
        std::wstring buffer(300, L'~');
        lornixAccountName(sid, buffer.data(), capacity);
        return std::wstring(buffer.c_str());
    };
    EXPECT_EQ(name(nullptr), L"Anyone");
    EXPECT_EQ(name(sidOf(L"S-1-5-32-544").get()), L"BUILTIN\\Administrators");
    EXPECT_EQ(name(sidOf(L"S-1-5-21-1-2-3-4").get()), L"S-1-5-21-1-2-3-4");
    EXPECT_EQ(name(sidOf(L"S-1-5-32-544").get(), 8), L"BUILTIN");
    EXPECT_EQ(name(nullptr, 1), L"");
    lornixAccountName(nullptr, nullptr, 10);
}

TEST_F(AccountSidTest, ByName)
{
    EXPECT_EQ(textOf(Block<void>(getSidByNameW(L"BUILTIN\\Administrators")).get()), L"S-1-5-32-544");
    EXPECT_EQ(textOf(Block<void>(getSidByNameW(L"Administrators")).get()), L"S-1-5-32-544");
    EXPECT_EQ(textOf(Block<void>(getSidByNameW(L"Everyone")).get()), L"S-1-1-0");
    EXPECT_EQ(getSidByNameW(L"nobody of that name"), nullptr);
    EXPECT_EQ(getSidByNameW(L"NODOMAIN\\Administrators"), nullptr);
    EXPECT_EQ(getSidByNameW(L""), nullptr);
    EXPECT_EQ(getSidByNameW(nullptr), nullptr);
    EXPECT_EQ(getSidByNameW(std::wstring(5000, L'x').c_str()), nullptr);
}

TEST_F(AccountSidTest, ADomainIsNoAccount)
{
    wchar_t computer[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    ASSERT_TRUE(GetComputerNameW(computer, &length));
    const Block<void> sid(getSidByNameW(computer));
    EXPECT_EQ(sid, nullptr) << testing::PrintToString(textOf(sid.get()));
    EXPECT_EQ(getSidByNameW(L"BUILTIN"), nullptr);
}

} // namespace
