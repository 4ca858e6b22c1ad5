// The servers that the last enumeration of accounts used.
#pragma once

/// Characters that each of the buffers holds, with the terminator.
inline constexpr int kServerNameCapacity = 260;

/// The domain server of the last account enumeration and the second server beside it; empty when there was
/// none, and until an enumeration has run. The Quota Settings dialog asks the same servers for the members of a
/// group. For the host's thread only, as everything here.
extern wchar_t lastDomainServer[kServerNameCapacity];
extern wchar_t lastDomainServer2[kServerNameCapacity];

/// Keeps the names of an enumeration's servers, cut to what the buffers hold.
void setLastDomainServers(const wchar_t* server, const wchar_t* server2);
