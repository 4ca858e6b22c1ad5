#include "accounts/null_session.h"

#include "accounts/server_share.h"
#include "frame/platform.h"

#include <lmcons.h>
#include <lmerr.h>
#include <lmuse.h>

int EstablishNullSession(const wchar_t* server, int connect)
{
    wchar_t share[kIpcShareCapacity];
    if (!makeIpcShareName(server, share)) {
        SetLastError(ERROR_INVALID_COMPUTERNAME);
        return 0;
    }
    NET_API_STATUS status = NERR_Success;
    if (connect != 0) {
        // Empty texts, not null: null would mean the user who is logged on.
        wchar_t empty[] = L"";
        USE_INFO_2 info{};
        info.ui2_remote = share;
        info.ui2_password = empty;
        info.ui2_asg_type = USE_IPC;
        info.ui2_username = empty;
        info.ui2_domainname = empty;
        status = NetUseAdd(nullptr, 2, reinterpret_cast<BYTE*>(&info), nullptr);
    } else {
        status = NetUseDel(nullptr, share, USE_NOFORCE);
    }
    if (status != NERR_Success) {
        SetLastError(status);
        return 0;
    }
    return 1;
}
