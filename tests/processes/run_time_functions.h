// Functions of the test in place of those that a module looks up at run time.
#pragma once

#include "tests/support/import_patch.h"

#include <windows.h>

#include <map>
#include <string>
#include <string_view>

/// Looking up a name of the list gives the function of the test, or none. All other names are looked up in the list
/// that was made before this one, if any, and then as ever.
class RunTimeFunctions {
public:
    explicit RunTimeFunctions(HMODULE module);
    ~RunTimeFunctions();
    RunTimeFunctions(const RunTimeFunctions&) = delete;
    RunTimeFunctions& operator=(const RunTimeFunctions&) = delete;

    template <class Function>
    void put(std::string_view name, Function* function)
    {
        m_functions[std::string(name)] = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
    }
    void remove(std::string_view name) { m_functions[std::string(name)] = nullptr; }

private:
    static FARPROC WINAPI lookUp(HMODULE module, const char* name);

    std::map<std::string, FARPROC, std::less<>> m_functions;
    RunTimeFunctions* m_before;
    ImportPatch m_patch;
};

/// Counts what a module does with the libraries, handles and heap blocks of the platform. One at a time.
class HeldThings {
public:
    explicit HeldThings(HMODULE module);
    ~HeldThings();
    HeldThings(const HeldThings&) = delete;
    HeldThings& operator=(const HeldThings&) = delete;

    int libraries = 0;      ///< loaded and not freed
    int heapBlocks = 0;     ///< allocated and not freed
    int closedHandles = 0;  ///< calls of CloseHandle
    int closedNulls = 0;    ///< those with null
    std::string loaded;     ///< names of the libraries, each followed by a blank
    int failHeapAfter = -1; ///< so many allocations succeed; -1: all

private:
    ImportPatch m_load;
    ImportPatch m_free;
    ImportPatch m_allocate;
    ImportPatch m_release;
    ImportPatch m_close;
};
