// What a call can be made to raise.
#pragma once

#include <cstdint>
#include <iosfwd>

enum class Fault : std::uint8_t {
    kNone,
    kAccessViolation,
    kDivideByZero,
    kCppException,
    kForeignException,
    kOtherCppException, ///< of another maker's language runtime
    kManagedException,
    kBreakpoint,
    kHeapCorruption, ///< as the system reports it
    kStackOverflow,
};

/// All kinds but None, for tests that go through them.
inline constexpr Fault kEveryFault[] = {
    Fault::kAccessViolation,  Fault::kDivideByZero,      Fault::kCppException,
    Fault::kForeignException, Fault::kOtherCppException, Fault::kManagedException,
    Fault::kBreakpoint,       Fault::kHeapCorruption,    Fault::kStackOverflow};

const char* faultName(Fault fault);

/// Shown by the names of tests that go through the kinds.
std::ostream& operator<<(std::ostream& out, Fault fault);

/// Raises it here. Nothing that must be released may be held by the callers up to the guard: processor faults run no
/// destructors.
void raiseNow(Fault fault);
