#include "lornix/sizes/backup_right.h"

namespace lornix::backup_right_detail {

Held take()
{
    // The thread alone gets it: the process is the host's, and its other threads work on meanwhile.
    Held held;
    constexpr DWORD kAccess = TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY;
    if (!OpenThreadToken(GetCurrentThread(), kAccess, TRUE, &held.token)) {
        if (GetLastError() != ERROR_NO_TOKEN || !ImpersonateSelf(SecurityImpersonation)) {
            return {};
        }
        held.isOwnToken = true;
        if (!OpenThreadToken(GetCurrentThread(), kAccess, TRUE, &held.token)) {
            RevertToSelf();
            return {};
        }
    }
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    DWORD size = 0;
    if (!LookupPrivilegeValueW(nullptr, SE_BACKUP_NAME, &wanted.Privileges[0].Luid) ||
        !AdjustTokenPrivileges(held.token, FALSE, &wanted, sizeof held.before, &held.before, &size))
    {
        held.before = {};
    }
    return held;
}

void giveBack(const Held& held)
{
    if (held.isOwnToken) {
        RevertToSelf();
    } else if (held.before.PrivilegeCount != 0) {
        TOKEN_PRIVILEGES before = held.before;
        AdjustTokenPrivileges(held.token, FALSE, &before, 0, nullptr, nullptr);
    }
    if (held.token != nullptr) {
        CloseHandle(held.token);
    }
}

} // namespace lornix::backup_right_detail
