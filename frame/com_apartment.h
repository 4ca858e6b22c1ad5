// COM for the time of a call to the shell.
#pragma once

#include "frame/platform.h"

#include <objbase.h>

/// Gives the calling thread a COM apartment when it has none. A thread that has chosen one keeps it, of whichever
/// kind: the same kind is only counted once more, and another kind is refused, which changes nothing.
class ComApartment {
public:
    ComApartment()
        : m_entered(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)))
    {
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment()
    {
        if (m_entered) {
            CoUninitialize();
        }
    }

private:
    bool m_entered;
};
