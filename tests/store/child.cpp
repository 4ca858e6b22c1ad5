#include "child.h"

#include "start_process.h"

namespace store_test {

Child::Child(const std::wstring& role, const std::vector<std::wstring>& arguments)
{
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    std::wstring line = L"--role " + role;
    for (const std::wstring& argument : arguments) {
        line += L" \"" + argument + L'"';
    }
    process_ = startProcess(program, line);
}

Child::~Child()
{
    if (process_.hProcess != nullptr) {
        kill();
        CloseHandle(process_.hThread);
        CloseHandle(process_.hProcess);
    }
}

void Child::kill()
{
    TerminateProcess(process_.hProcess, kEndedItself);
    WaitForSingleObject(process_.hProcess, INFINITE);
}

DWORD Child::wait()
{
    DWORD code = 0;
    WaitForSingleObject(process_.hProcess, INFINITE);
    GetExitCodeProcess(process_.hProcess, &code);
    return code;
}

bool Child::isRunning() const
{
    return WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT;
}

} // namespace store_test
