// Folder names as an administrator types them and as the store compares them.
#pragma once

#include <string>

namespace host {

/// One spelling for display: backslashes, no blanks or quotes around, no slash at the end but for a drive's
/// root. The letter case stays.
std::wstring tidyFolder(std::wstring name);

/// Two names with the same key are the same folder: neither case nor the kind of slash counts.
std::wstring folderKey(const std::wstring& name);

/// @return true for a name that starts at a drive or a server and so means the same everywhere.
bool isFullPath(const std::wstring& tidyName);

} // namespace host
