// When two spellings of a folder mean the same one.
#pragma once

#include <string>
#include <string_view>

namespace lornix {

/// Two spellings with equal keys are the same folder: the case of letters, the kind of slash and slashes at the
/// end do not count. Which letters are pairs is fixed here and not asked of the system: what was stored on one
/// machine means the same on another.
std::u16string folderKey(std::u16string_view folder);

} // namespace lornix
