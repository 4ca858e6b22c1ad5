// Rule sets that tell which storing they are from.
#pragma once

#include "store_test.h"

namespace store_test {

/// The folders that a storing changes.
std::vector<std::wstring> generationFolders();

/// The rules of a generation: each folder has some, or none in some generations; all have the generation as their
/// hard limit, and their number follows from it.
std::vector<Rule> generation(std::int64_t number);

/// The generation that a folder's stored rules are from.
/// @return 0 for none; a failure of the test when they are no whole generation, or something is reported.
std::int64_t storedGeneration(const std::wstring& folder);

/// Whether a folder has rules in a generation.
bool hasRules(const std::wstring& folder, std::int64_t number);

} // namespace store_test
