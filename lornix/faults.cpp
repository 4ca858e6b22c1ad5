#include "lornix/faults.h"

namespace lornix::faults_detail {
namespace {

constexpr DWORD kNotImplemented = 0x80000100; // raised by the placeholder that a runtime puts behind a name

} // namespace

bool runWhereThere(Step call, void* context)
{
    __try
    {
        call(context);
        return true;
    } __except (GetExceptionCode() == kNotImplemented ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH)
    {
        return false;
    }
}

DWORD faultOf(Step call, void* context)
{
    DWORD code = 0;
    __try
    {
        call(context);
    } __except (code = GetExceptionCode(), EXCEPTION_EXECUTE_HANDLER)
    {
    }
    return code;
}

void runThen(Step call, void* context, Step then, void* thenContext)
{
    __try
    {
        call(context);
    } __finally
    {
        then(thenContext);
    }
}

} // namespace lornix::faults_detail
