#include "frame/always_after.h"

#include "frame/compiler.h"
#include "frame/platform.h"
#include "frame/stack_guarantee.h"

namespace always_after_detail {
namespace {

LONG runAndGoOn(void (*after)(void*), void* context)
{
    after(context);
    return EXCEPTION_CONTINUE_SEARCH;
}

CORVANE_NOINLINE void runGuarding(void (*call)(void*), void* context, void (*after)(void*),
                                  void* afterContext)
{
    __try
    {
        call(context);
    } __except (runAndGoOn(after, afterContext))
    {
    }
}

} // namespace

void run(void (*call)(void*), void* context, void (*after)(void*), void* afterContext)
{
    keepStackForHandlers();
    runGuarding(call, context, after, afterContext);
    after(afterContext);
}

} // namespace always_after_detail
