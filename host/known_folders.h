// The folders that the store knows to have rules.
#pragma once

#include <string>
#include <vector>

namespace host {

/// @return none also when they could not be read, which lornixLastError() tells.
std::vector<std::wstring> knownFolders();

} // namespace host
