#include "lornix/accounts/platform_call.h"

namespace lornix::platform_call_detail {

bool run(void (*call)(void*), void* context)
{
    __try
    {
        call(context);
        return true;
    } __except (EXCEPTION_EXECUTE_HANDLER)
    {
        return false;
    }
}

} // namespace lornix::platform_call_detail
