#include "processes/remote_share.h"

#include "processes/loaded_library.h"

#include <cwchar>
#include <iterator>
#include <winnetwk.h>

DWORD connectRemoteShare(const wchar_t* machine, const wchar_t* user, const wchar_t* password)
{
    const LoadedLibrary mpr(LoadLibraryW(L"mpr.dll"));
    decltype(WNetAddConnection2W)* addConnection = nullptr;
    if (!lookUp(mpr.get(), "WNetAddConnection2W", addConnection)) {
        return ERROR_PROC_NOT_FOUND;
    }
    wchar_t share[260] = {};
    _snwprintf(share, std::size(share) - 1, L"%ls\\IPC$", machine);

    NETRESOURCEW resource{};
    resource.dwType = RESOURCETYPE_ANY;
    resource.lpRemoteName = share;
    return addConnection(&resource, password, user, 0);
}
