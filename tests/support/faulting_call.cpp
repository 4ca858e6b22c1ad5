#include "tests/support/faulting_call.h"

#include "compiler/attributes.h"
#include "tests/support/stack_overflow.h"

#include <malloc.h>

namespace {

// Two layers: each compiler takes language exceptions in one of its own, and a processor fault in the other.
CORVANE_NOINLINE DWORD runCatching(void (*call)(void*), void* context)
{
    try {
        call(context);
        return 0;
    } catch (...) {
        return kCppException;
    }
}

} // namespace

namespace faulting_call_detail {

DWORD run(void (*call)(void*), void* context)
{
    guaranteeStackForHandlers();
    DWORD code = 0;
    // The code is taken in the filter: not every compiler knows it any more in the block that follows.
    __try
    {
        return runCatching(call, context);
    } __except (code = GetExceptionCode(), EXCEPTION_EXECUTE_HANDLER)
    {
        if (code == EXCEPTION_STACK_OVERFLOW) {
            _resetstkoflw(); // for the next one
        }
        return code;
    }
}

} // namespace faulting_call_detail
