#include "corvane.h"
#include "imports.h"
#include "tests/support/recording_store.h"

#include <gmock/gmock.h>

#include <map>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Calls of the check in order, each with a switch that makes it fail with an error of its own.
std::map<std::string, DWORD> failing;
std::vector<std::string> calls;
HANDLE threadToken;      // given out in place of the real one when set
BOOL accessGranted = -1; // what AccessCheck writes; -1: asks the platform
int blocks;
int sidsHeld;
struct {
    DWORD aclSize, mask, desired, privilegesSize, aceRevision, aclRevision;
    GENERIC_MAPPING mapping;
} seen;

decltype(ImpersonateSelf)* realImpersonateSelf;
decltype(OpenThreadToken)* realOpenThreadToken;
decltype(OpenProcessToken)* realOpenProcessToken;
decltype(AllocateAndInitializeSid)* realAllocateSid;
decltype(FreeSid)* realFreeSid;
decltype(LocalAlloc)* realLocalAlloc;
decltype(LocalFree)* realLocalFree;
decltype(InitializeSecurityDescriptor)* realInitializeDescriptor;
decltype(InitializeAcl)* realInitializeAcl;
decltype(AddAccessAllowedAce)* realAddAce;
decltype(SetSecurityDescriptorDacl)* realSetDacl;
decltype(SetSecurityDescriptorGroup)* realSetGroup;
decltype(SetSecurityDescriptorOwner)* realSetOwner;
decltype(IsValidSecurityDescriptor)* realIsValid;
decltype(AccessCheck)* realAccessCheck;
decltype(RevertToSelf)* realRevert;

/// Notes a call. @return whether it is to fail; the last error is set then.
bool fails(const std::string& function)
{
    calls.push_back(function);
    const auto found = failing.find(function);
    if (found == failing.end()) {
        return false;
    }
    SetLastError(found->second);
    return true;
}

BOOL WINAPI impersonateSelf(SECURITY_IMPERSONATION_LEVEL level)
{
    EXPECT_EQ(level, SecurityImpersonation);
    return fails("ImpersonateSelf") ? FALSE : realImpersonateSelf(level);
}
BOOL WINAPI openThreadToken(HANDLE thread, DWORD access, BOOL asSelf, PHANDLE token)
{
    EXPECT_EQ(thread, GetCurrentThread());
    EXPECT_EQ(access, static_cast<DWORD>(TOKEN_QUERY));
    EXPECT_FALSE(asSelf);
    if (fails("OpenThreadToken")) {
        return FALSE;
    }
    if (threadToken != nullptr) {
        return DuplicateHandle(GetCurrentProcess(), threadToken, GetCurrentProcess(), token, 0, FALSE,
                               DUPLICATE_SAME_ACCESS);
    }
    return realOpenThreadToken(thread, access, asSelf, token);
}
BOOL WINAPI openProcessToken(HANDLE process, DWORD access, PHANDLE token)
{
    EXPECT_EQ(access, static_cast<DWORD>(TOKEN_QUERY));
    return fails("OpenProcessToken") ? FALSE : realOpenProcessToken(process, access, token);
}
BOOL WINAPI allocateSid(PSID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD a, DWORD b, DWORD c, DWORD d,
                        DWORD e, DWORD f, DWORD g, DWORD h, PSID* sid)
{
    EXPECT_EQ(authority->Value[5], 5);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(a, 32u);
    EXPECT_EQ(b, 544u);
    if (fails("AllocateAndInitializeSid")) {
        return FALSE;
    }
    ++sidsHeld;
    return realAllocateSid(authority, count, a, b, c, d, e, f, g, h, sid);
}
PVOID WINAPI freeSid(PSID sid)
{
    --sidsHeld;
    return realFreeSid(sid);
}
HLOCAL WINAPI localAlloc(UINT flags, SIZE_T size)
{
    EXPECT_EQ(flags, static_cast<UINT>(LPTR));
    if (fails(size == 40 ? "LocalAlloc descriptor" : "LocalAlloc acl")) {
        return nullptr;
    }
    ++blocks;
    return realLocalAlloc(flags, size);
}
HLOCAL WINAPI localFree(HLOCAL block)
{
    --blocks;
    return realLocalFree(block);
}
BOOL WINAPI initializeDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision)
{
    EXPECT_EQ(revision, 1u);
    return fails("InitializeSecurityDescriptor") ? FALSE : realInitializeDescriptor(descriptor, revision);
}
BOOL WINAPI initializeAcl(PACL acl, DWORD size, DWORD revision)
{
    seen.aclSize = size;
    seen.aclRevision = revision;
    return fails("InitializeAcl") ? FALSE : realInitializeAcl(acl, size, revision);
}
BOOL WINAPI addAce(PACL acl, DWORD revision, DWORD mask, PSID sid)
{
    EXPECT_TRUE(IsWellKnownSid(sid, WinBuiltinAdministratorsSid));
    seen.mask = mask;
    seen.aceRevision = revision;
    return fails("AddAccessAllowedAce") ? FALSE : realAddAce(acl, revision, mask, sid);
}
BOOL WINAPI setDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL acl, BOOL defaulted)
{
    EXPECT_TRUE(present);
    EXPECT_FALSE(defaulted);
    return fails("SetSecurityDescriptorDacl") ? FALSE : realSetDacl(descriptor, present, acl, defaulted);
}
BOOL WINAPI setGroup(PSECURITY_DESCRIPTOR descriptor, PSID sid, BOOL defaulted)
{
    EXPECT_FALSE(defaulted);
    EXPECT_TRUE(IsWellKnownSid(sid, WinBuiltinAdministratorsSid));
    return fails("SetSecurityDescriptorGroup") ? FALSE : realSetGroup(descriptor, sid, defaulted);
}
BOOL WINAPI setOwner(PSECURITY_DESCRIPTOR descriptor, PSID sid, BOOL defaulted)
{
    EXPECT_FALSE(defaulted);
    EXPECT_TRUE(IsWellKnownSid(sid, WinBuiltinAdministratorsSid));
    return fails("SetSecurityDescriptorOwner") ? FALSE : realSetOwner(descriptor, sid, defaulted);
}
BOOL WINAPI isValid(PSECURITY_DESCRIPTOR descriptor)
{
    return fails("IsValidSecurityDescriptor") ? FALSE : realIsValid(descriptor);
}
BOOL WINAPI accessCheck(PSECURITY_DESCRIPTOR descriptor, HANDLE token, DWORD desired,
                        PGENERIC_MAPPING mapping, PPRIVILEGE_SET privileges, LPDWORD privilegesSize,
                        LPDWORD granted, LPBOOL status)
{
    seen.desired = desired;
    seen.mapping = *mapping;
    seen.privilegesSize = *privilegesSize;
    if (fails("AccessCheck")) {
        *status = TRUE; // must not count
        return FALSE;
    }
    if (accessGranted != -1) {
        *status = accessGranted;
        return TRUE;
    }
    return realAccessCheck(descriptor, token, desired, mapping, privileges, privilegesSize, granted, status);
}
BOOL WINAPI revert()
{
    calls.push_back("RevertToSelf");
    return realRevert();
}

bool threadHasToken()
{
    HANDLE token = nullptr;
    if (!realOpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, &token)) {
        return false;
    }
    CloseHandle(token);
    return true;
}

const std::vector<std::string> kWholeCheck = {"ImpersonateSelf",
                                              "OpenThreadToken",
                                              "AllocateAndInitializeSid",
                                              "LocalAlloc descriptor",
                                              "InitializeSecurityDescriptor",
                                              "LocalAlloc acl",
                                              "InitializeAcl",
                                              "AddAccessAllowedAce",
                                              "SetSecurityDescriptorDacl",
                                              "SetSecurityDescriptorGroup",
                                              "SetSecurityDescriptorOwner",
                                              "IsValidSecurityDescriptor",
                                              "AccessCheck",
                                              "RevertToSelf"};

struct AdminCheckTest : testing::Test {
    AdminCheckTest()
    {
        failing.clear();
        calls.clear();
        threadToken = nullptr;
        accessGranted = -1;
        blocks = 0;
        sidsHeld = 0;
        seen = {};
        realImpersonateSelf = m_imports.replace("ImpersonateSelf", impersonateSelf);
        realOpenThreadToken = m_imports.replace("OpenThreadToken", openThreadToken);
        realOpenProcessToken = m_imports.replace("OpenProcessToken", openProcessToken);
        realAllocateSid = m_imports.replace("AllocateAndInitializeSid", allocateSid);
        realFreeSid = m_imports.replace("FreeSid", freeSid);
        realLocalAlloc = m_imports.replace("LocalAlloc", localAlloc);
        realLocalFree = m_imports.replace("LocalFree", localFree);
        realInitializeDescriptor = m_imports.replace("InitializeSecurityDescriptor", initializeDescriptor);
        realInitializeAcl = m_imports.replace("InitializeAcl", initializeAcl);
        realAddAce = m_imports.replace("AddAccessAllowedAce", addAce);
        realSetDacl = m_imports.replace("SetSecurityDescriptorDacl", setDacl);
        realSetGroup = m_imports.replace("SetSecurityDescriptorGroup", setGroup);
        realSetOwner = m_imports.replace("SetSecurityDescriptorOwner", setOwner);
        realIsValid = m_imports.replace("IsValidSecurityDescriptor", isValid);
        realAccessCheck = m_imports.replace("AccessCheck", accessCheck);
        realRevert = m_imports.replace("RevertToSelf", revert);
    }
    ~AdminCheckTest() override { realRevert(); }

    static void expectNothingHeld()
    {
        EXPECT_EQ(blocks, 0);
        EXPECT_EQ(sidsHeld, 0);
    }

    RecordingStore store;

private:
    Imports m_imports;
};

TEST_F(AdminCheckTest, AnAdministratorHasTheRights)
{
    // The tests run as an administrator of the runtime's machine.
    EXPECT_NE(isAdmin(), 0);
    EXPECT_EQ(calls, kWholeCheck);
    EXPECT_THAT(store.calls(), IsEmpty());
    EXPECT_FALSE(threadHasToken());
    EXPECT_EQ(seen.aclSize, 16u + 16u); // a SID of two sub-authorities
    EXPECT_EQ(seen.aclRevision, 2u);
    EXPECT_EQ(seen.aceRevision, 2u);
    EXPECT_EQ(seen.mask, 3u);
    EXPECT_EQ(seen.desired, 1u);
    EXPECT_EQ(seen.privilegesSize, 20u);
    EXPECT_EQ(seen.mapping.GenericRead, 1u);
    EXPECT_EQ(seen.mapping.GenericWrite, 2u);
    EXPECT_EQ(seen.mapping.GenericExecute, 0u);
    EXPECT_EQ(seen.mapping.GenericAll, 3u);
    expectNothingHeld();
}

TEST_F(AdminCheckTest, GivesTheStatusThatTheAccessCheckWrote)
{
    accessGranted = FALSE;
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_THAT(store.calls(), IsEmpty()); // a clear no is no failure
    EXPECT_FALSE(threadHasToken());
    accessGranted = TRUE;
    EXPECT_EQ(isAdmin(), TRUE);
    expectNothingHeld();
}

class AdminCheckFailure : public AdminCheckTest, public testing::WithParamInterface<const char*> {};

TEST_P(AdminCheckFailure, MeansNoRights)
{
    failing[GetParam()] = 0x1ABC;
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_EQ(calls.back(), GetParam()); // nothing is tried after it
    EXPECT_THAT(store.lines(), ElementsAre("*** isAdmin() check failed, assuming no rights: 1ABC\n"));
    EXPECT_TRUE(threadHasToken()); // still impersonating itself
    expectNothingHeld();
}

INSTANTIATE_TEST_SUITE_P(Calls, AdminCheckFailure,
                         testing::Values("OpenThreadToken", "AllocateAndInitializeSid",
                                         "LocalAlloc descriptor", "InitializeSecurityDescriptor",
                                         "LocalAlloc acl", "InitializeAcl", "AddAccessAllowedAce",
                                         "SetSecurityDescriptorDacl", "SetSecurityDescriptorGroup",
                                         "SetSecurityDescriptorOwner", "IsValidSecurityDescriptor"));

TEST_F(AdminCheckTest, AFailedAccessCheckWritesBothLinesAndGoesOnImpersonating)
{
    failing["AccessCheck"] = 1309;
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_EQ(calls.back(), "AccessCheck");
    EXPECT_THAT(store.lines(), ElementsAre("AccessCheck() failed with error 1309\n",
                                           "*** isAdmin() check failed, assuming no rights: 51D\n"));
    EXPECT_TRUE(threadHasToken());
    expectNothingHeld();
    // The next check finds that token, and reverts.
    failing.clear();
    EXPECT_NE(isAdmin(), 0);
    EXPECT_FALSE(threadHasToken());
}

TEST_F(AdminCheckTest, AThreadWithoutTokenIsCheckedByTheProcess)
{
    failing["ImpersonateSelf"] = ERROR_ACCESS_DENIED; // not checked: the thread then has no token, error 1008
    accessGranted = TRUE;
    EXPECT_NE(isAdmin(), 0);
    EXPECT_EQ(calls[1], "OpenThreadToken");
    EXPECT_EQ(calls[2], "OpenProcessToken");
    EXPECT_EQ(calls[3], "AllocateAndInitializeSid");
    EXPECT_THAT(store.calls(), IsEmpty());
    expectNothingHeld();
}

TEST_F(AdminCheckTest, APrimaryTokenIsRefusedByThePlatform)
{
    failing["ImpersonateSelf"] = ERROR_ACCESS_DENIED;
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_THAT(store.lines(), ElementsAre("AccessCheck() failed with error 1309\n",
                                           "*** isAdmin() check failed, assuming no rights: 51D\n"));
    expectNothingHeld();
}

TEST_F(AdminCheckTest, NoTokenAtAll)
{
    failing["ImpersonateSelf"] = ERROR_ACCESS_DENIED;
    failing["OpenProcessToken"] = ERROR_ACCESS_DENIED;
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_EQ(calls.back(), "OpenProcessToken");
    EXPECT_THAT(store.lines(), ElementsAre("*** isAdmin() check failed, assuming no rights: 5\n"));
    // Any other reason than a missing token is final.
    calls.clear();
    store.takeCalls();
    failing = {{"OpenThreadToken", ERROR_ACCESS_DENIED}};
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_EQ(calls.back(), "OpenThreadToken");
    expectNothingHeld();
}

TEST_F(AdminCheckTest, AFilteredTokenHasNoRights)
{
    HANDLE process = nullptr;
    ASSERT_TRUE(realOpenProcessToken(GetCurrentProcess(), TOKEN_DUPLICATE | TOKEN_QUERY, &process));
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID administrators = nullptr;
    ASSERT_TRUE(realAllocateSid(&authority, 2, 32, 544, 0, 0, 0, 0, 0, 0, &administrators));
    SID_AND_ATTRIBUTES disabled{administrators, 0};
    HANDLE filtered = nullptr;
    const BOOL made = CreateRestrictedToken(process, 0, 1, &disabled, 0, nullptr, 0, nullptr, &filtered);
    realFreeSid(administrators);
    CloseHandle(process);
    if (!made) {
        GTEST_SKIP() << "this runtime makes no filtered tokens";
    }
    ASSERT_TRUE(DuplicateToken(filtered, SecurityImpersonation, &threadToken));
    EXPECT_EQ(isAdmin(), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
    CloseHandle(threadToken);
    CloseHandle(filtered);
    expectNothingHeld();
}

} // namespace
