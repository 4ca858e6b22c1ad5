#include "frame/crash_guard.h"

#include "compiler/trapped_call.h"
#include "frame/stack_guarantee.h"
#include "store/lornix.h"

#include <malloc.h>

namespace crash_guard_detail {
namespace {

struct Attempt {
    void (*call)(void*);
    void* context;
    bool cameToItsEnd = false;
};

// Two layers in two functions: a language exception must be caught before it meets the outer one.
void runCatching(void* attempted)
{
    Attempt& attempt = *static_cast<Attempt*>(attempted);
    try {
        attempt.call(attempt.context);
        attempt.cameToItsEnd = true;
    } catch (...) {
        attempt.cameToItsEnd = false;
    }
}

LONG take(EXCEPTION_POINTERS* raised, void* code)
{
    *static_cast<DWORD*>(code) = raised->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

bool run(void (*call)(void*), void* context)
{
    keepStackForHandlers();
    Attempt attempt{call, context};
    DWORD code = 0;
    if (trapped_call::run(runCatching, &attempt, take, &code)) {
        return attempt.cameToItsEnd;
    }
    if (code == EXCEPTION_STACK_OVERFLOW) {
        _resetstkoflw(); // puts the guard page back: the next overflow is then caught as well
    }
    return false;
}

void report(const CrashSite& site)
{
    // The channel belongs to the store: it may be what is broken.
    runGuarded([&] { ODS("UI CRASH: %s, %s, %d\n", site.source, site.routine, site.line); });
}

} // namespace crash_guard_detail
