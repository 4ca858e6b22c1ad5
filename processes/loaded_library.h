// A library that is loaded for the time of one call.
#pragma once

#include "frame/platform.h"

#include <bit>

class LoadedLibrary {
public:
    explicit LoadedLibrary(const wchar_t* fileName)
        : m_module(LoadLibraryW(fileName))
    {
    }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    ~LoadedLibrary()
    {
        if (m_module != nullptr) {
            const DWORD error = GetLastError(); // what the enumeration came to outlives the library
            FreeLibrary(m_module);
            SetLastError(error);
        }
    }

    /// Null when the library was not found.
    HMODULE handle() const { return m_module; }

private:
    HMODULE m_module;
};

/// Looks up an entry point. @return whether it is there.
template <class Function>
bool lookUp(HMODULE module, const char* name, Function*& entry)
{
    entry = std::bit_cast<Function*>(module != nullptr ? GetProcAddress(module, name) : nullptr);
    return entry != nullptr;
}
