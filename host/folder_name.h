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

/// A path as the platform understands it: from the current folder on, and with dots worked out.
std::wstring fullPath(const std::wstring& path);

/// The form of a full path that the platform takes at any length. It is taken as it stands: no slashes are turned
/// round in it and no dots worked out.
/// @param path  full, with backslashes. What is not one, and what has this form already, comes back as it is.
std::wstring longForm(const std::wstring& path);

/// Checks a folder that a person typed. @param tidyName  as tidyFolder() gives it.
/// @return why it cannot be shown; empty when it can.
std::wstring whyNotAFolder(const std::wstring& tidyName);

} // namespace host
