#include "frame/system_version.h"
#include "processes/enumerators.h"
#include "processes/loaded_library.h"
#include "processes/process_heap.h"

#include <cwchar>

namespace {

// Declared by hand: the platform's header gives these functions the names of newer systems.
struct ModuleApi {
    BOOL(WINAPI* enumProcesses)(DWORD*, DWORD, DWORD*) = nullptr;
    BOOL(WINAPI* enumProcessModules)(HANDLE, HMODULE*, DWORD, DWORD*) = nullptr;
    DWORD(WINAPI* getModuleFileName)(HANDLE, HMODULE, wchar_t*, DWORD) = nullptr;

    bool find(HMODULE psapi)
    {
        return lookUp(psapi, "EnumProcesses", enumProcesses) &&
               lookUp(psapi, "EnumProcessModules", enumProcessModules) &&
               lookUp(psapi, "GetModuleFileNameExW", getModuleFileName);
    }
};

// The number of the system's own process. QUIRK: 2 and 8 stand the wrong way round for their versions.
// ModulesTest.KnowsTheSystemProcessByTheVersion
DWORD systemProcessId()
{
    const OSVERSIONINFOEXW version = systemVersion();
    if (version.dwMajorVersion < 5) {
        return 8;
    }
    return version.dwMinorVersion == 0 ? 2 : 4;
}

struct ProcessIds {
    ProcessHeapBlock block; ///< null on failure; the last error tells which
    DWORD count = 0;

    DWORD operator[](DWORD index) const { return static_cast<const DWORD*>(block.get())[index]; }
};

ProcessIds allProcessIds(const ModuleApi& api)
{
    // An answer that fills the buffer may have been cut: it is asked for again with twice the room.
    for (DWORD size = 2 * 128; size != 0; size *= 2) {
        ProcessIds ids{allocateFromProcessHeap(size)};
        if (!ids.block) {
            return {};
        }
        DWORD filled = 0;
        if (!api.enumProcesses(static_cast<DWORD*>(ids.block.get()), size, &filled)) {
            return {};
        }
        if (filled != size) {
            ids.count = filled / sizeof(DWORD);
            return ids;
        }
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return {};
}

// @return the last part of the file name of the process's first module, null when it cannot be had.
const wchar_t* moduleName(const ModuleApi& api, DWORD processId, wchar_t (&buffer)[MAX_PATH + 1])
{
    const wchar_t* name = nullptr;
    HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
    HMODULE module = nullptr;
    DWORD needed = 0;
    if (process != nullptr && api.enumProcessModules(process, &module, sizeof(HMODULE), &needed) &&
        api.getModuleFileName(process, module, buffer, MAX_PATH) != 0)
    {
        const wchar_t* backslash = std::wcsrchr(buffer, L'\\');
        name = backslash != nullptr ? backslash + 1 : buffer;
    }
    // QUIRK: closed even when nothing was opened; whoever traces handles sees a failed opening by it.
    // ModulesTest.TellsEachProcess
    CloseHandle(process);
    return name;
}

} // namespace

int enumerateProcessModules(const wchar_t* /*machine*/, ProcessCallback callback, void* context)
{
    const LoadedLibrary psapi(LoadLibraryW(L"psapi.dll"));
    ModuleApi api;
    if (!api.find(psapi.get())) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return 0;
    }
    const DWORD systemId = systemProcessId();
    const ProcessIds ids = allProcessIds(api);
    if (!ids.block) {
        return 0;
    }
    for (DWORD i = 0; i < ids.count; ++i) {
        const DWORD id = ids[i];
        wchar_t buffer[MAX_PATH + 1] = {}; // the platform may leave a name that fills its room without an end
        const wchar_t* name = nullptr;
        if (id == 0) {
            name = L"Idle";
        } else if (id == systemId) {
            name = L"System";
        } else {
            name = moduleName(api, id, buffer);
        }
        if (callback(id, name, context) == 0) {
            break;
        }
    }
    return 1;
}
