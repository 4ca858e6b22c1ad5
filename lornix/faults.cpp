#include "lornix/faults.h"

namespace lornix::faults_detail {
namespace {

constexpr DWORD kNotImplemented = 0x80000100; // raised by the placeholder that a runtime puts behind a name

LONG takePlaceholder(EXCEPTION_POINTERS* raised, void*)
{
    return raised->ExceptionRecord->ExceptionCode == kNotImplemented ? EXCEPTION_EXECUTE_HANDLER
                                                                     : EXCEPTION_CONTINUE_SEARCH;
}

LONG take(EXCEPTION_POINTERS* raised, void* code)
{
    *static_cast<DWORD*>(code) = raised->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace

bool runWhereThere(trapped_call::Step call, void* context)
{
    return trapped_call::run(call, context, takePlaceholder, nullptr);
}

DWORD faultOf(trapped_call::Step call, void* context)
{
    DWORD code = 0;
    trapped_call::run(call, context, take, &code);
    return code;
}

} // namespace lornix::faults_detail
