// Rule sets that tell which storing they are from.
#pragma once

#include "store_test.h"

namespace store_test {

inline constexpr std::size_t kFewFolders = 3;

/// The folders that a storing changes.
std::vector<std::wstring> generationFolders(std::size_t count = kFewFolders);

/// The rules of a generation: each folder has some, or none in some generations; all have the generation as their
/// hard limit, and their number follows from it.
std::vector<Rule> generation(std::int64_t number, std::size_t folders = kFewFolders);

/// The generation that the stored rules of a folder, by its place in the list, are from.
/// @return 0 for none; a failure of the test when they are no whole generation, or something is reported.
std::int64_t storedGeneration(std::size_t folder);

/// Whether a folder has rules in a generation.
bool hasRules(std::size_t folder, std::int64_t number);

} // namespace store_test
