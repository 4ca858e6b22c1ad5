// The five policy lists.
#pragma once

#include "lornix/policies/policy_list.h"

namespace lornix {

PolicyList& notifications();
PolicyList& excludes();
PolicyList& blockedExtensions();
PolicyList& administrativeAccounts();
PolicyList& backupTools();

/// Writes the exceptions that are active, excluded files and backup tools, to a file of the data folder.
/// @param fileName  without a folder, and none of the store's own.
/// @return false with a report.
bool writeActiveExceptions(const std::wstring& fileName);

} // namespace lornix
