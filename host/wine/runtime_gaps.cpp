#include "host/wine/runtime_gaps.h"

#include "host/wine/filter_bar.h"

#include <windows.h>

#include <commctrl.h>

#include <cstring>
#include <iterator>

namespace host {
namespace {

bool onLinuxRuntime()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

bool isHeader(HWND window)
{
    wchar_t name[32] = {};
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return lstrcmpiW(name, WC_HEADERW) == 0;
}

/// A header that is given the filter-bar style gets its bar. Watching the library's call costs nothing, while a hook
/// would slow down every message, thousands of rows long.
LONG_PTR WINAPI setWindowLong(HWND window, int index, LONG_PTR value)
{
    const LONG_PTR before = SetWindowLongPtrW(window, index, value);
    if (index == GWL_STYLE && (value & HDS_FILTERBAR) != 0 && isHeader(window)) {
        addFilterBar(window);
    }
    return before;
}

BOOL WINAPI volumeWithStreams(LPCWSTR root, LPWSTR name, DWORD nameRoom, DWORD* serial, DWORD* component,
                              DWORD* flags, LPWSTR system, DWORD systemRoom)
{
    const BOOL known =
        GetVolumeInformationW(root, name, nameRoom, serial, component, flags, system, systemRoom);
    if (known && flags != nullptr && GetDriveTypeW(root) == DRIVE_FIXED) {
        *flags |= FILE_NAMED_STREAMS;
    }
    return known;
}

/// Replaces one function in a module's import table.
void replaceImport(HMODULE module, const char* name, ULONGLONG replacement)
{
    auto* base = reinterpret_cast<unsigned char*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
    for (; imports.Size != 0 && library->Name != 0; ++library) {
        const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) {
                continue;
            }
            const auto* import =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            DWORD before = 0;
            if (std::strcmp(import->Name, name) == 0 &&
                VirtualProtect(&addresses->u1.Function, sizeof addresses->u1.Function, PAGE_READWRITE,
                               &before))
            {
                addresses->u1.Function = replacement;
                VirtualProtect(&addresses->u1.Function, sizeof addresses->u1.Function, before, &before);
            }
        }
    }
}

} // namespace

void fillRuntimeGaps()
{
    if (!onLinuxRuntime()) {
        return;
    }
    const HMODULE corvane = GetModuleHandleW(L"corvane");
    replaceImport(corvane, "SetWindowLongPtrW", reinterpret_cast<ULONGLONG>(setWindowLong));
    replaceImport(corvane, "GetVolumeInformationW", reinterpret_cast<ULONGLONG>(volumeWithStreams));
}

} // namespace host
