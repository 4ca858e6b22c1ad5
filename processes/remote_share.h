// The connection to another machine, made before its processes can be enumerated.
#pragma once

#include "frame/platform.h"

/// Connects to the machine's "IPC$" share.
/// @param machine   machine name with its leading backslashes; cut where it does not fit into 259 characters
///                  together with the share's name.
/// @param user      account name, null for the caller's own.
/// @param password  null for that account's default.
/// @return ERROR_SUCCESS or the platform's error.
DWORD connectRemoteShare(const wchar_t* machine, const wchar_t* user, const wchar_t* password);
