// The stored rules as a table of text.
#pragma once

#include <string>
#include <vector>

namespace host {

/// Prints the stored rules of some folders, or of all folders that the store knows, to standard output.
/// @param folders  empty: all known folders.
/// @return true when all could be read; what could not is told on standard error.
bool dumpRules(const std::vector<std::wstring>& folders);

} // namespace host
