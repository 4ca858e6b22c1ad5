// Calling platform functions that a runtime may have only by name.
#pragma once

#include <windows.h>

namespace lornix {

namespace platform_call_detail {
__declspec(noinline) bool run(void (*call)(void*), void* context);
}

/// Runs a call and tells whether it came back. Some runtimes have a placeholder behind a function's name, which
/// raises a fault: that is then an answer like any other.
template <class Call>
bool survives(Call call)
{
    return platform_call_detail::run([](void* context) { (*static_cast<Call*>(context))(); }, &call);
}

} // namespace lornix
