#include "processes/enumerators.h"
#include "processes/loaded_library.h"
#include "store/owned.h"

#include <cstddef>
#include <cwchar>
#include <tlhelp32.h>

static_assert(sizeof(PROCESSENTRY32W) == 568 && offsetof(PROCESSENTRY32W, szExeFile) == 44);

namespace {

struct SnapshotApi {
    decltype(CreateToolhelp32Snapshot)* create = nullptr;
    decltype(Process32FirstW)* first = nullptr;
    decltype(Process32NextW)* next = nullptr;

    bool find()
    {
        HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
        return lookUp(kernel, "CreateToolhelp32Snapshot", create) &&
               lookUp(kernel, "Process32FirstW", first) && lookUp(kernel, "Process32NextW", next);
    }
};

const wchar_t* imageName(const PROCESSENTRY32W& entry)
{
    // The platform writes back how much of the entry it filled.
    if (entry.dwSize <= offsetof(PROCESSENTRY32W, szExeFile)) {
        return nullptr;
    }
    // QUIRK: the backslash stays in front of the name; hosts cut after the last backslash themselves.
    // SnapshotTest.KeepsTheBackslashOfAFullPath
    const wchar_t* backslash = std::wcsrchr(entry.szExeFile, L'\\');
    return backslash != nullptr ? backslash : entry.szExeFile;
}

} // namespace

int enumerateProcessSnapshot(const wchar_t* /*machine*/, ProcessCallback callback, void* context)
{
    SnapshotApi api;
    if (!api.find()) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return 0;
    }
    Owned<HANDLE, CloseHandle, -1> snapshot(api.create(TH32CS_SNAPPROCESS, 0));
    if (!snapshot) {
        return 0;
    }
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    if (!api.first(snapshot.get(), &entry)) {
        // QUIRK: the snapshot stays open; closing it would overwrite the error that hosts read.
        // SnapshotTest.LeavesTheSnapshotOpenWhenThereIsNoFirstProcess
        static_cast<void>(snapshot.release());
        return 0;
    }
    do {
        if (callback(entry.th32ProcessID, imageName(entry), context) == 0) {
            break;
        }
        entry.dwSize = sizeof entry;
    } while (api.next(snapshot.get(), &entry));
    return 1;
}
