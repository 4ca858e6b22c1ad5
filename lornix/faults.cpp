#include "lornix/faults.h"

namespace lornix::faults_detail {

LONG takePlaceholder(EXCEPTION_POINTERS* raised, void*)
{
    constexpr DWORD kNotImplemented = 0x80000100;
    return raised->ExceptionRecord->ExceptionCode == kNotImplemented ? EXCEPTION_EXECUTE_HANDLER
                                                                     : EXCEPTION_CONTINUE_SEARCH;
}

LONG take(EXCEPTION_POINTERS* raised, void* code)
{
    *static_cast<DWORD*>(code) = raised->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace lornix::faults_detail
