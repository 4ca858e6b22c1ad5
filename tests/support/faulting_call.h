// Tells what a call raises, for calls that are to fault.
#pragma once

#include <windows.h>

namespace faulting_call_detail {
DWORD run(void (*call)(void*), void* context);
}

/// Stands for an exception of the language, whose own code is the compiler's affair.
inline constexpr DWORD kCppException = 1;

/// @return the code of the fault that a call raises, kCppException, or 0 when it comes to its end.
template <class Call>
DWORD faultOf(Call call)
{
    return faulting_call_detail::run([](void* context) { (*static_cast<Call*>(context))(); }, &call);
}
