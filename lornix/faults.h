// Processor faults and what a runtime raises: they skip destructors, and the host's guard is to see them.
#pragma once

#include "compiler/trapped_call.h"

namespace lornix {

namespace faults_detail {
inline LONG takePlaceholder(EXCEPTION_POINTERS* raised, void*)
{
    constexpr DWORD kNotImplemented = 0x80000100;
    return raised->ExceptionRecord->ExceptionCode == kNotImplemented ? EXCEPTION_EXECUTE_HANDLER
                                                                     : EXCEPTION_CONTINUE_SEARCH;
}

inline LONG take(EXCEPTION_POINTERS* raised, void* code)
{
    *static_cast<DWORD*>(code) = raised->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}

template <class Call>
void step(void* context)
{
    (*static_cast<Call*>(context))();
}
} // namespace faults_detail

/// Runs a call to a function that a runtime may have only by name: behind the name stands a placeholder then, which
/// raises a code of its own. Every other fault goes on to the caller.
/// @return what the call returns, or `missing` when there is only a placeholder.
template <class Result, class Call>
Result ifThere(Result missing, Call call)
{
    auto keep = [&] {
        missing = call();
    };
    trapped_call::run(faults_detail::step<decltype(keep)>, &keep, faults_detail::takePlaceholder, nullptr);
    return missing;
}

/// Runs a call that throws no exceptions, on a thread whose faults are another one's business.
/// @return 0, or the code of the fault that ended it.
template <class Call>
DWORD faultOf(Call call)
{
    DWORD code = 0;
    trapped_call::run(faults_detail::step<Call>, &call, faults_detail::take, &code);
    return code;
}

/// Runs a call, and what has to follow it in any case: after an exception and after a fault.
template <class Call, class Then>
void runThen(Call call, Then then)
{
    trapped_call::runThen(faults_detail::step<Call>, &call, faults_detail::step<Then>, &then);
}

} // namespace lornix
