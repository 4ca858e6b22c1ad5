#include "start_process.h"

#include <gtest/gtest.h>

namespace store_test {

PROCESS_INFORMATION startProcess(const std::wstring& program, const std::wstring& arguments)
{
    PROCESS_INFORMATION process{};
    const auto start = [&] {
        std::wstring line = L'"' + program + L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        return CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                              &startup, &process) != FALSE;
    };
    if (!start() && (GetLastError() != ERROR_INTERNAL_ERROR || !start())) {
        ADD_FAILURE() << "another process does not start: " << GetLastError();
    }
    return process;
}

} // namespace store_test
