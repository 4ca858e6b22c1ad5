// Stack for those who handle a stack overflow.
#pragma once

#include "frame/platform.h"

/// Keeps a part of this thread's stack back, so that after an overflow there is room for what follows on the same
/// stack: the search for a handler, a control that is switched back to drawing, a host's own report. The platform
/// knows no way to give less than was given once, so the thread keeps it; it asks for nothing when a host has
/// provided as much already, and where the stack is too small it changes nothing.
inline void keepStackForHandlers()
{
    constexpr ULONG kKept = 128 * 1024;
    ULONG present = 0;
    if (SetThreadStackGuarantee(&present) != FALSE && present < kKept) {
        ULONG wanted = kKept;
        SetThreadStackGuarantee(&wanted);
    }
}
