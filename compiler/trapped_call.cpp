#include "compiler/trapped_call.h"

#if defined(_MSC_VER) || defined(__clang__)

namespace trapped_call {

bool run(Step call, void* callContext, Filter filter, void* filterContext)
{
    __try
    {
        call(callContext);
        return true;
    } __except (filter(GetExceptionInformation(), filterContext))
    {
        return false;
    }
}

void runThen(Step call, void* callContext, Step then, void* thenContext)
{
    __try
    {
        call(callContext);
    } __finally
    {
        then(thenContext);
    }
}

} // namespace trapped_call

#endif
