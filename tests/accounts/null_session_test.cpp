#include "accounts/null_session.h"

#include "imports.h"

#include <gtest/gtest.h>

#include <lmcons.h>
#include <lmuse.h>

#include <optional>

namespace {

struct Added {
    bool onThisMachine = false;
    DWORD level = 0;
    bool localNull = false;
    std::wstring remote, password, user, domain;
    DWORD type = 0;
    bool noParameterError = false;
};
struct Deleted {
    bool onThisMachine = false;
    std::wstring remote;
    DWORD force = 99;
};

std::optional<Added> added;
std::optional<Deleted> deleted;
NET_API_STATUS status;

NET_API_STATUS WINAPI addUse(LMSTR server, DWORD level, LPBYTE data, LPDWORD parameterError)
{
    const auto& info = *reinterpret_cast<const USE_INFO_2*>(data);
    EXPECT_NE(info.ui2_password, nullptr);
    EXPECT_NE(info.ui2_username, nullptr);
    EXPECT_NE(info.ui2_domainname, nullptr);
    added = {server == nullptr,         level,
             info.ui2_local == nullptr, info.ui2_remote,
             info.ui2_password,         info.ui2_username,
             info.ui2_domainname,       info.ui2_asg_type,
             parameterError == nullptr};
    return status;
}

NET_API_STATUS WINAPI deleteUse(LMSTR server, LMSTR name, DWORD force)
{
    deleted = {server == nullptr, name, force};
    return status;
}

class NullSession : public testing::Test {
protected:
    NullSession()
    {
        added.reset();
        deleted.reset();
        status = 0;
        m_imports.replace("NetUseAdd", addUse);
        m_imports.replace("NetUseDel", deleteUse);
        SetLastError(4711);
    }

private:
    Imports m_imports;
};

TEST_F(NullSession, ConnectsAsNobody)
{
    EXPECT_NE(EstablishNullSession(L"NORTH", 1), 0);
    ASSERT_TRUE(added);
    EXPECT_TRUE(added->onThisMachine);
    EXPECT_EQ(added->level, 2u);
    EXPECT_TRUE(added->localNull);
    EXPECT_EQ(added->remote, L"\\\\NORTH\\IPC$");
    EXPECT_EQ(added->password, L"");
    EXPECT_EQ(added->user, L"");
    EXPECT_EQ(added->domain, L"");
    EXPECT_EQ(added->type, static_cast<DWORD>(USE_IPC));
    EXPECT_TRUE(added->noParameterError);
    EXPECT_FALSE(deleted);
    EXPECT_EQ(GetLastError(), 4711u);
}

TEST_F(NullSession, DisconnectsWithoutForce)
{
    EXPECT_NE(EstablishNullSession(L"\\\\NORTH", 0), 0);
    ASSERT_TRUE(deleted);
    EXPECT_TRUE(deleted->onThisMachine);
    EXPECT_EQ(deleted->remote, L"\\\\NORTH\\IPC$");
    EXPECT_EQ(deleted->force, static_cast<DWORD>(USE_NOFORCE));
    EXPECT_FALSE(added);
}

TEST_F(NullSession, PassesOnWhatThePlatformReports)
{
    status = ERROR_SESSION_CREDENTIAL_CONFLICT;
    EXPECT_EQ(EstablishNullSession(L"NORTH", 5), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SESSION_CREDENTIAL_CONFLICT));
    EXPECT_TRUE(added);
    status = 2250;
    EXPECT_EQ(EstablishNullSession(L"NORTH", 0), 0);
    EXPECT_EQ(GetLastError(), 2250u);
}

TEST_F(NullSession, RefusesNamesThatNoComputerHas)
{
    for (const wchar_t* const server :
         {static_cast<const wchar_t*>(nullptr), L"", L"A234567890123456", L"\\\\A234567890123456"})
    {
        for (const int connect : {0, 1}) {
            SetLastError(4711);
            EXPECT_EQ(EstablishNullSession(server, connect), 0);
            EXPECT_EQ(GetLastError(), 1210u);
        }
    }
    EXPECT_FALSE(added);
    EXPECT_FALSE(deleted);
}

TEST_F(NullSession, TakesFifteenCharacters)
{
    EXPECT_NE(EstablishNullSession(L"A23456789012345", 1), 0);
    EXPECT_EQ(added->remote, L"\\\\A23456789012345\\IPC$");
    EXPECT_NE(EstablishNullSession(L"\\\\A23456789012345", 1), 0);
    EXPECT_EQ(added->remote, L"\\\\A23456789012345\\IPC$");
}

} // namespace
