// The folders that carry rules.
#pragma once

#include "lornix/disk/data_folder.h"

#include <string>
#include <vector>

namespace lornix {

/// Changes to the known folders. Spellings do not count: what is known already is not added again.
struct FolderChanges {
    std::vector<std::u16string> added;
    std::vector<std::u16string> removed;
};

/// Applies changes; nothing is written when they change nothing.
/// @return false with a report.
bool changeKnownFolders(const DataFolder& data, const StoreLock& lock, const FolderChanges& changes,
                        Patience& patience);

} // namespace lornix
