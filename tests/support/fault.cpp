#include "tests/support/fault.h"

#include "tests/support/stack_overflow.h"

#include <windows.h>

#include <ostream>
#include <stdexcept>

namespace {

int* volatile nowhere = nullptr;
volatile int many = 7;
volatile int zero = 0;
volatile int sink = 0;

constexpr DWORD kForeignCode = 0xE0000001; // of no language runtime at all
constexpr DWORD kOtherCppCode = 0xE06D7363;
constexpr DWORD kManagedCode = 0xE0434352;
constexpr DWORD kHeapCorruptionCode = 0xC0000374;

/// Like a thrown object of the runtime that comes with the system's own compiler: the object, and where in its
/// module its type is described. It has no type that anybody could catch.
void raiseOtherCppException()
{
    static const int object = 0;
    static const int types = 0;
    static int description[4] = {};
    const auto module = reinterpret_cast<ULONG_PTR>(GetModuleHandleW(nullptr));
    description[3] = static_cast<int>(reinterpret_cast<ULONG_PTR>(&types) - module);
    constexpr ULONG_PTR kVersion = 0x19930520;
    const ULONG_PTR parameters[] = {kVersion, reinterpret_cast<ULONG_PTR>(&object),
                                    reinterpret_cast<ULONG_PTR>(description), module};
    RaiseException(kOtherCppCode, EXCEPTION_NONCONTINUABLE, 4, parameters);
}

void raiseManagedException()
{
    constexpr ULONG_PTR kFailure = 0x80131500;
    const ULONG_PTR parameters[] = {kFailure, 0, 0, 0, 0};
    RaiseException(kManagedCode, EXCEPTION_NONCONTINUABLE, 5, parameters);
}

} // namespace

std::ostream& operator<<(std::ostream& out, Fault fault)
{
    return out << faultName(fault);
}

void raiseNow(Fault fault)
{
    switch (fault) {
    case Fault::kNone:
        break;
    case Fault::kAccessViolation:
        *nowhere = 1;
        break;
    case Fault::kDivideByZero:
        sink = many / zero;
        break;
    case Fault::kCppException:
        throw std::runtime_error("raised by the recording store");
    case Fault::kForeignException:
        RaiseException(kForeignCode, 0, 0, nullptr);
        break;
    case Fault::kOtherCppException:
        raiseOtherCppException();
        break;
    case Fault::kManagedException:
        raiseManagedException();
        break;
    case Fault::kBreakpoint:
        __debugbreak();
        break;
    case Fault::kHeapCorruption:
        RaiseException(kHeapCorruptionCode, EXCEPTION_NONCONTINUABLE, 0, nullptr);
        break;
    case Fault::kStackOverflow:
        overflowStack();
        break;
    }
}

const char* faultName(Fault fault)
{
    switch (fault) {
    case Fault::kAccessViolation:
        return "AccessViolation";
    case Fault::kDivideByZero:
        return "DivideByZero";
    case Fault::kCppException:
        return "CppException";
    case Fault::kForeignException:
        return "ForeignException";
    case Fault::kOtherCppException:
        return "OtherCppException";
    case Fault::kManagedException:
        return "ManagedException";
    case Fault::kBreakpoint:
        return "Breakpoint";
    case Fault::kHeapCorruption:
        return "HeapCorruption";
    case Fault::kStackOverflow:
        return "StackOverflow";
    case Fault::kNone:
        break;
    }
    return "None";
}
