// Runs a program as the present user, but without the rights of an administrator, as the system does for programs
// that nobody has confirmed: the user stays a member of the group, and the membership grants nothing.
//
//   as_plain_user PROGRAM [ARGUMENT ...]
//
// Ends with the exit code of the program, and takes it along when it is killed itself.
#include <windows.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace {

struct Close {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Close>;

int fail(const char* what)
{
    std::fprintf(stderr, "as_plain_user: %s: error %lu\n", what, GetLastError());
    return 125;
}

Handle plainToken()
{
    HANDLE own = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &own)) {
        return nullptr;
    }
    const Handle token(own);
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID administrators = nullptr;
    if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0,
                                  0, 0, 0, 0, &administrators))
    {
        return nullptr;
    }
    SID_AND_ATTRIBUTES grantsNothing{administrators, 0};
    HANDLE plain = nullptr;
    CreateRestrictedToken(own, 0, 1, &grantsNothing, 0, nullptr, 0, nullptr, &plain);
    FreeSid(administrators);
    return Handle(plain);
}

/// What stands behind this program's own name in the command line.
std::wstring rest(std::wstring_view line)
{
    const size_t end = line.starts_with(L'"') ? line.find(L'"', 1) : line.find(L' ');
    const size_t start = end == line.npos ? line.npos : line.find_first_not_of(L' ', end + 1);
    return start == line.npos ? std::wstring() : std::wstring(line.substr(start));
}

} // namespace

int main()
{
    std::wstring line = rest(GetCommandLineW());
    const Handle token = plainToken();
    if (token == nullptr) {
        return fail("no token");
    }
    const Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessAsUserW(token.get(), nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                              nullptr, nullptr, &startup, &started))
    {
        return fail("the program does not start");
    }
    const Handle process(started.hProcess);
    const Handle thread(started.hThread);
    AssignProcessToJobObject(job.get(), process.get());
    ResumeThread(thread.get());
    WaitForSingleObject(process.get(), INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    return static_cast<int>(code);
}
