// Text that only the account that sealed it can read again, on the same machine.
#pragma once

#include "store/owned.h"

#include <windows.h>

#include <string>

namespace lornix {

/// Passwords are among the strings, so none is left behind in memory.
void wipeAndFree(wchar_t* text);
/// A malloc block.
using OwnedText = Owned<wchar_t*, wipeAndFree>;

/// @throws std::bad_alloc
OwnedText copyText(const wchar_t* text);

/// @param sealed  receives bytes.
/// @return 0 or a platform error.
DWORD sealText(const wchar_t* text, std::string& sealed);

/// @param text  receives the text; stays as it is on failure.
/// @return 0 or a platform error.
DWORD unsealText(const std::string& sealed, OwnedText& text);

} // namespace lornix
