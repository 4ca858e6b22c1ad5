#include "frame/crash_guard.h"

#include "frame/compiler.h"
#include "frame/stack_guarantee.h"
#include "store/lornix.h"

#include <malloc.h>

namespace crash_guard_detail {
namespace {

// Two layers in two functions: a language exception must be caught before it meets the outer one, and the
// outer one only sees faults of functions that it calls.
CORVANE_NOINLINE bool runCatching(void (*call)(void*), void* context)
{
    try {
        call(context);
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace

CORVANE_NOINLINE bool run(void (*call)(void*), void* context)
{
    keepStackForHandlers();
    DWORD code = 0;
    __try
    {
        return runCatching(call, context);
    } __except (code = GetExceptionCode(), EXCEPTION_EXECUTE_HANDLER)
    {
        if (code == EXCEPTION_STACK_OVERFLOW) {
            _resetstkoflw(); // puts the guard page back: the next overflow is then caught as well
        }
        return false;
    }
}

void report(const CrashSite& site)
{
    // The channel belongs to the store: it may be what is broken.
    runGuarded([&] { ODS("UI CRASH: %s, %s, %d\n", site.source, site.routine, site.line); });
}

} // namespace crash_guard_detail
