#include "lornix/sizes/backup_right.h"

#include "lornix/faults.h"

namespace lornix {
namespace {

/// What to undo.
struct Held {
    HANDLE token = nullptr;
    TOKEN_PRIVILEGES before{};
    bool isOwnToken = false; // the thread acts as somebody only for this
};

Held take()
{
    // The thread alone gets it: the process is the host's, and its other threads work on meanwhile.
    Held held;
    constexpr DWORD kAccess = TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY;
    if (!OpenThreadToken(GetCurrentThread(), kAccess, TRUE, &held.token) &&
        GetLastError() == ERROR_NO_TOKEN && ImpersonateSelf(SecurityImpersonation))
    {
        held.isOwnToken = true;
        OpenThreadToken(GetCurrentThread(), kAccess, TRUE, &held.token);
    }
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    DWORD size = 0;
    if (held.token == nullptr ||
        !LookupPrivilegeValueW(nullptr, SE_BACKUP_NAME, &wanted.Privileges[0].Luid) ||
        !AdjustTokenPrivileges(held.token, FALSE, &wanted, sizeof held.before, &held.before, &size))
    {
        held.before = {};
    }
    return held;
}

void giveBack(Held& held)
{
    if (held.isOwnToken) {
        RevertToSelf();
    } else if (held.before.PrivilegeCount != 0) {
        AdjustTokenPrivileges(held.token, FALSE, &held.before, 0, nullptr, nullptr);
    }
    if (held.token != nullptr) {
        CloseHandle(held.token);
    }
}

} // namespace

void withBackupRight(const std::function<void()>& call)
{
    Held held = take();
    runThen([&] { call(); }, [&] { giveBack(held); });
}

} // namespace lornix
