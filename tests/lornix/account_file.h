// What tests of the account directory file share: a file, and questions as the library asks them.
#pragma once

#include "store_test.h"

namespace store_test {

inline constexpr const wchar_t* kAccountsVariable = L"LORNIX_ACCOUNTS";

inline constexpr const char* kExample = "lornix accounts 1\r\n"
                                        "# two domains, the second without SIDs of its own machine\r\n"
                                        "domain EXAMPLE S-1-5-21-1-2-3\r\n"
                                        "server DC1\r\n"
                                        "server \\\\DC2\r\n"
                                        "domain OTHER S-1-5-21-4-5-6\r\n"
                                        "server FAR.other.test\r\n"
                                        "domain EMPTY S-1-5-21-7-8-9\r\n"
                                        "user S-1-5-21-1-2-3-1001 EXAMPLE\\alice\r\n"
                                        "user S-1-5-21-1-2-3-1002 EXAMPLE\\bob\r\n"
                                        "user S-1-5-21-4-5-6-1001 OTHER\\carol\r\n"
                                        "user S-1-5-21-7-8-9-1001 EMPTY\\dora\r\n"
                                        "user S-1-5-21-9-9-9-1001 eve\r\n"
                                        "group S-1-5-21-1-2-3-2001 EXAMPLE\\Domain Users\r\n"
                                        "member EXAMPLE\\bob\r\n"
                                        "member S-1-5-21-1-2-3-1001\r\n"
                                        "group S-1-5-21-1-2-3-2002 EXAMPLE\\Ring\r\n"
                                        "member carol\r\n"
                                        "member EXAMPLE\\ring\r\n"
                                        "member example\\DOMAIN USERS\r\n"
                                        "member bob\r\n"
                                        "group S-1-5-21-9-9-9-2001 Local Staff\r\n"
                                        "member eve\r\n"
                                        "end\r\n";

/// A test without the variable that names another file.
class AccountFile : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        SetEnvironmentVariableW(kAccountsVariable, nullptr);
    }
    void TearDown() override
    {
        SetEnvironmentVariableW(kAccountsVariable, nullptr);
        StoreTest::TearDown();
    }
    std::filesystem::path file() const { return data() / L"accounts.txt"; }
};

inline std::vector<std::wstring> users(const wchar_t* server)
{
    return textsOf(Sids(enumerateUsers(server, nullptr)).get());
}

inline std::vector<std::wstring> groups(const wchar_t* server)
{
    return textsOf(Sids(enumerateGroups(server, nullptr)).get());
}

inline std::vector<std::wstring> members(const wchar_t* server, const wchar_t* group)
{
    return textsOf(Sids(enumerateGroupUsers(server, group, nullptr)).get());
}

inline std::wstring nameOf(const std::wstring& sid)
{
    wchar_t buffer[512] = L"";
    return getAccountBySidW(sidOf(sid).get(), buffer, 512) == nullptr ? L"" : buffer;
}

inline std::wstring sidByName(const wchar_t* name)
{
    const Block<void> sid(getSidByNameW(name));
    return sid == nullptr ? L"" : textOf(sid.get());
}

using Texts = std::vector<std::wstring>;

} // namespace store_test
