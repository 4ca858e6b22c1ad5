// The share through which a server is reached without a name and password.
#pragma once

/// Longest name of a server, without leading backslashes.
inline constexpr int kServerNameLimit = 15;
/// Characters of a share's name, with the terminator: two backslashes, a server's name, \IPC$.
inline constexpr int kIpcShareCapacity = 2 + kServerNameLimit + 5 + 1;

/// Builds \\SERVER\IPC$.
/// @param server  name with or without leading backslashes. One backslash among the first two characters counts
///                as both, and nothing is put before the name then.
/// @return false, and nothing written, when the server is null, empty or too long.
bool makeIpcShareName(const wchar_t* server, wchar_t (&share)[kIpcShareCapacity]);
