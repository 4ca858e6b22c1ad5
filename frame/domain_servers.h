// The servers that the last enumeration of accounts used.
#pragma once

/// Characters that each of the buffers holds, with the terminator.
inline constexpr int kServerNameCapacity = 260;

/// The domain server of the last account enumeration and the second server beside it; empty when there was
/// none, and until an enumeration has run. Written by the enumeration alone; the Quota Settings dialog asks
/// the same servers for the members of a group.
extern wchar_t lastDomainServer[kServerNameCapacity];
extern wchar_t lastDomainServer2[kServerNameCapacity];
