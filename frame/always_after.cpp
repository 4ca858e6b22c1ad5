#include "frame/always_after.h"

#include "compiler/trapped_call.h"
#include "frame/stack_guarantee.h"

namespace always_after_detail {
namespace {

struct After {
    void (*call)(void*);
    void* context;
};

LONG runAndGoOn(EXCEPTION_POINTERS*, void* after)
{
    const After& wanted = *static_cast<const After*>(after);
    wanted.call(wanted.context);
    return EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

void run(void (*call)(void*), void* context, void (*after)(void*), void* afterContext)
{
    keepStackForHandlers();
    After wanted{after, afterContext};
    trapped_call::run(call, context, runAndGoOn, &wanted);
    after(afterContext);
}

} // namespace always_after_detail
