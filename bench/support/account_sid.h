// The security identifiers of the benches' stores, all of one size.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <cstring>

/// S-1-5-21-1-2-3-NUMBER, as the platform lays it out.
struct AccountSid {
    BYTE revision = SID_REVISION;
    BYTE subAuthorityCount = 5;
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    DWORD subAuthority[5] = {21, 1, 2, 3, 0};

    explicit AccountSid(DWORD number) { subAuthority[4] = number; }
    static DWORD numberOf(const void* sid) { return static_cast<const AccountSid*>(sid)->subAuthority[4]; }

    /// @return a malloc copy.
    static void* copy(const void* sid)
    {
        return sid != nullptr ? std::memcpy(std::malloc(sizeof(AccountSid)), sid, sizeof(AccountSid))
                              : nullptr;
    }
    /// @return 0 when they are the same; nothing is the same as null.
    static int compare(const void* a, const void* b)
    {
        return a == nullptr || b == nullptr ? 1 : std::memcmp(a, b, sizeof(AccountSid));
    }
};
