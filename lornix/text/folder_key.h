// When two spellings of a folder mean the same one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lornix {

/// Two spellings with equal keys are the same folder: the case of letters, the kind of slash and slashes at the
/// end do not count. Which letters are pairs is fixed here and not asked of the system: what was stored on one
/// machine means the same on another.
std::u16string folderKey(std::u16string_view folder);

/// The same in place.
void turnIntoFolderKey(std::u16string& folder);

std::uint64_t hashOfKey(std::u16string_view key);

/// Whether a spelling of plain characters, each of a byte, has a key: without making it, for thousands of folders.
bool hasFolderKey(std::string_view plain, std::u16string_view key);

} // namespace lornix
