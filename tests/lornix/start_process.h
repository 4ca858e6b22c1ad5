// Other processes that use the store beside a test.
#pragma once

#include <windows.h>

#include <string>

namespace store_test {

/// Starts a program; the failure of the test when it does not start. Now and then a runtime loses a process before it
/// has begun (ERROR_INTERNAL_ERROR); it is started once more then.
/// @param program    path of the program.
/// @param arguments  as they stand on the command line.
/// @return handles to close; null ones when it did not start.
PROCESS_INFORMATION startProcess(const std::wstring& program, const std::wstring& arguments);

} // namespace store_test
