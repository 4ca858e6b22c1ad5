// When two spellings of a folder mean the same one, and the file that its rules are kept in.
#pragma once

#include <string>
#include <string_view>

namespace lornix {

/// Two spellings with equal keys are the same folder: the case of letters, the kind of slash and slashes at the
/// end do not count. Which letters are pairs is fixed here and not asked of the system, because the names of
/// stored files come from it.
std::u16string folderKey(std::u16string_view folder);

/// Name of the file of a folder: the readable end of its key, and a hash of the whole key.
std::string ruleFileName(std::u16string_view key);

} // namespace lornix
