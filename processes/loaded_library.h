// A library that is loaded for the time of one call.
#pragma once

#include "frame/platform.h"
#include "store/owned.h"

#include <bit>

/// The last error stays: it tells what the enumeration came to.
inline void unloadLibrary(HMODULE module)
{
    const DWORD error = GetLastError();
    FreeLibrary(module);
    SetLastError(error);
}
/// Null when the library was not found.
using LoadedLibrary = Owned<HMODULE, unloadLibrary>;

/// Looks up an entry point. @return whether it is there.
template <class Function>
bool lookUp(HMODULE module, const char* name, Function*& entry)
{
    entry = std::bit_cast<Function*>(module != nullptr ? GetProcAddress(module, name) : nullptr);
    return entry != nullptr;
}
