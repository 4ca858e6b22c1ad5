// Whether the caller may edit quota rules.
#include "corvane.h"
#include "frame/platform.h"
#include "store/lornix.h"
#include "store/owned.h"

namespace {

using OwnedLocal = Owned<HLOCAL, LocalFree>;
using OwnedSid = Owned<PSID, FreeSid>;
using OwnedHandle = Owned<HANDLE, CloseHandle>;

constexpr DWORD kReadAccess = 1;
constexpr DWORD kWriteAccess = 2;

/// The caller's own token, of the thread when it has one; null when none can be opened.
OwnedHandle openToken()
{
    HANDLE token = nullptr;
    if (!OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, FALSE, &token)) {
        token = nullptr;
        if (GetLastError() != ERROR_NO_TOKEN || !OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) {
            token = nullptr;
        }
    }
    return OwnedHandle(token);
}

OwnedSid makeAdministratorsSid()
{
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID sid = nullptr;
    if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0,
                                  0, 0, 0, 0, &sid))
    {
        sid = nullptr;
    }
    return OwnedSid(sid);
}

/// The check in progress, with what it holds. Every step gives whether it succeeded, and leaves the platform's last
/// error when it did not.
class AdminCheck {
public:
    bool prepare();
    bool ask(BOOL& granted);

private:
    bool makeAcl();
    bool makeDescriptor();

    OwnedHandle m_token;
    OwnedSid m_administrators;
    OwnedLocal m_descriptor;
    OwnedLocal m_acl;
};

bool AdminCheck::prepare()
{
    ImpersonateSelf(
        SecurityImpersonation); // without it the thread token below is missing, and that is seen there
    m_token = openToken();
    if (!m_token) {
        return false;
    }
    m_administrators = makeAdministratorsSid();
    return m_administrators && makeDescriptor();
}

bool AdminCheck::makeDescriptor()
{
    m_descriptor.reset(LocalAlloc(LPTR, SECURITY_DESCRIPTOR_MIN_LENGTH));
    PSECURITY_DESCRIPTOR const descriptor = m_descriptor.get();
    PSID const sid = m_administrators.get();
    return descriptor != nullptr && InitializeSecurityDescriptor(descriptor, SECURITY_DESCRIPTOR_REVISION) &&
           makeAcl() && SetSecurityDescriptorDacl(descriptor, TRUE, static_cast<ACL*>(m_acl.get()), FALSE) &&
           SetSecurityDescriptorGroup(descriptor, sid, FALSE) &&
           SetSecurityDescriptorOwner(descriptor, sid, FALSE) && IsValidSecurityDescriptor(descriptor);
}

bool AdminCheck::makeAcl()
{
    PSID const sid = m_administrators.get();
    const DWORD size =
        static_cast<DWORD>(sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE) - sizeof(DWORD)) + GetLengthSid(sid);
    m_acl.reset(LocalAlloc(LPTR, size));
    ACL* const acl = static_cast<ACL*>(m_acl.get());
    return acl != nullptr && InitializeAcl(acl, size, ACL_REVISION) &&
           AddAccessAllowedAce(acl, ACL_REVISION, kReadAccess | kWriteAccess, sid);
}

bool AdminCheck::ask(BOOL& granted)
{
    GENERIC_MAPPING mapping{kReadAccess, kWriteAccess, 0, kReadAccess | kWriteAccess};
    PRIVILEGE_SET privileges{};
    DWORD privilegesSize = sizeof(privileges);
    DWORD grantedAccess = 0;
    if (!AccessCheck(m_descriptor.get(), m_token.get(), kReadAccess, &mapping, &privileges, &privilegesSize,
                     &grantedAccess, &granted))
    {
        return false;
    }
    // QUIRK: only here. After a failure the thread goes on impersonating itself, so that a host that asks once more gets
    // the same answer. AdminCheckTest.AFailedAccessCheckWritesBothLinesAndGoesOnImpersonating
    RevertToSelf();
    return true;
}

static_assert(SECURITY_DESCRIPTOR_MIN_LENGTH == 40 && sizeof(PRIVILEGE_SET) == 20);

} // namespace

int isAdmin()
{
    BOOL granted = FALSE;
    DWORD error = ERROR_SUCCESS;
    {
        AdminCheck check;
        if (check.prepare()) {
            if (check.ask(granted)) {
                return granted;
            }
            error = GetLastError();
            ODS("AccessCheck() failed with error %lu\n", error);
        } else {
            error = GetLastError();
        }
    }
    ODS("*** isAdmin() check failed, assuming no rights: %X\n", error);
    return 0;
}
