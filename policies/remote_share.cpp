#include "policies/remote_share.h"

#include <cwchar>
#include <iterator>
#include <winnetwk.h>

DWORD connectRemoteShare(const wchar_t* machine, const wchar_t* user, const wchar_t* password)
{
    wchar_t share[260] = {};
    _snwprintf(share, std::size(share) - 1, L"%ls\\IPC$", machine);

    NETRESOURCEW resource{};
    resource.dwType = RESOURCETYPE_ANY;
    resource.lpRemoteName = share;
    return WNetAddConnection2W(&resource, password, user, 0);
}
