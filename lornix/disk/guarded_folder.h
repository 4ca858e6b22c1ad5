// A folder that everybody can read and only the administration can change.
#pragma once

#include <windows.h>

#include <string>

namespace lornix {

/// Makes one folder, unless it is there: it belongs to the administrators, who alone may change what is in it, and
/// everybody may read it, whatever the folder above allows.
/// @return 0 or a platform error; ERROR_INVALID_OWNER for a user who is no administrator.
DWORD makeGuardedFolder(const std::wstring& path);

/// Whether a folder is missing, or belongs to the administrators, the system or the user of this process. A folder
/// of anybody else may hold what its owner likes, now and later.
bool isOurs(const std::wstring& path);

} // namespace lornix
