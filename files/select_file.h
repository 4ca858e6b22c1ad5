// The file chooser behind every "Browse..." button.
#pragma once

#include "frame/platform.h"

/// What a file is chosen for; any other number: an existing file of any kind.
namespace select_file_mode {
inline constexpr unsigned kExecutable = 1; ///< an existing program or script
inline constexpr unsigned kAnyName = 2;    ///< any file, also one that does not exist yet
} // namespace select_file_mode

/// Shows the platform's open or save dialog, titled "Select file", or on servers of the version-6 generation the
/// library's own "Choose file..." dialog.
/// @param owner  owner window, may be null.
/// @return the full path in the one buffer of this function, overwritten by each call; null when the user
///         cancelled or the dialog failed. From the own dialog with nothing selected: an empty text.
const wchar_t* selectFile(HWND owner, unsigned mode);
