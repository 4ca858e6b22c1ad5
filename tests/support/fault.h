// What a call can be made to raise.
#pragma once

#include <iosfwd>

enum class Fault {
    None,
    AccessViolation,
    DivideByZero,
    CppException,
    ForeignException,
    OtherCppException, ///< of another maker's language runtime
    ManagedException,
    Breakpoint,
    HeapCorruption, ///< as the system reports it
    StackOverflow,
};

/// All kinds but None, for tests that go through them.
inline constexpr Fault kEveryFault[] = {
    Fault::AccessViolation,  Fault::DivideByZero,      Fault::CppException,
    Fault::ForeignException, Fault::OtherCppException, Fault::ManagedException,
    Fault::Breakpoint,       Fault::HeapCorruption,    Fault::StackOverflow};

const char* faultName(Fault fault);

/// Shown by the names of tests that go through the kinds.
std::ostream& operator<<(std::ostream& out, Fault fault);

/// Raises it here. Nothing that must be released may be held by the callers up to the guard: processor faults run no
/// destructors.
void raiseNow(Fault fault);
