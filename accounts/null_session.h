// Anonymous connections to a server.
#pragma once

/// Opens or closes an anonymous connection to a server's IPC$ share.
/// @param server   name with or without leading backslashes.
/// @param connect  non-zero to open, 0 to close.
/// @return non-zero on success. 0 with the thread's last error set on failure: 1210 for a name that is null, empty
///         or longer than 15 characters, otherwise what the platform reports.
int EstablishNullSession(const wchar_t* server, int connect);
