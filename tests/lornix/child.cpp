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
    m_process = startProcess(program, line);
}

Child::~Child()
{
    if (m_process.hProcess != nullptr) {
        kill();
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
}

void Child::kill()
{
    TerminateProcess(m_process.hProcess, kEndedItself);
    WaitForSingleObject(m_process.hProcess, INFINITE);
}

DWORD Child::wait()
{
    DWORD code = 0;
    WaitForSingleObject(m_process.hProcess, INFINITE);
    GetExitCodeProcess(m_process.hProcess, &code);
    return code;
}

bool Child::isRunning() const
{
    return WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT;
}

} // namespace store_test
