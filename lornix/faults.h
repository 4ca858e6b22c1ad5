// Processor faults and what a runtime raises: they skip destructors, and the host's guard is to see them.
#pragma once

#include "compiler/trapped_call.h"

namespace lornix {

namespace faults_detail {
bool runWhereThere(trapped_call::Step call, void* context);
DWORD faultOf(trapped_call::Step call, void* context);

template <class Call>
void step(void* context)
{
    (*static_cast<Call*>(context))();
}
} // namespace faults_detail

/// Runs a call to a function that a runtime may have only by name: behind the name stands a placeholder then, which
/// raises a code of its own. Every other fault goes on to the caller.
/// @return false when there is only a placeholder.
template <class Call>
bool isImplemented(Call call)
{
    return faults_detail::runWhereThere(faults_detail::step<Call>, &call);
}

/// Runs a call that throws no exceptions, on a thread whose faults are another one's business.
/// @return 0, or the code of the fault that ended it.
template <class Call>
DWORD faultOf(Call call)
{
    return faults_detail::faultOf(faults_detail::step<Call>, &call);
}

/// Runs a call, and what has to follow it in any case: after an exception and after a fault.
template <class Call, class Then>
void runThen(Call call, Then then)
{
    trapped_call::runThen(faults_detail::step<Call>, &call, faults_detail::step<Then>, &then);
}

} // namespace lornix
