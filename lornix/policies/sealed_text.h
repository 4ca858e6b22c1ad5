// Text that only the account that sealed it can read again, on the same machine.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace lornix {

/// Passwords are among the strings, so none is left behind in memory.
struct WipingFree {
    void operator()(wchar_t* text) const;
};
/// A malloc block.
using OwnedText = std::unique_ptr<wchar_t, WipingFree>;

/// @throws std::bad_alloc
OwnedText copyText(const wchar_t* text);

/// @param sealed  receives bytes.
/// @return 0 or a platform error.
DWORD sealText(const wchar_t* text, std::string& sealed);

/// @param text  receives the text; stays as it is on failure.
/// @return 0 or a platform error.
DWORD unsealText(const std::string& sealed, OwnedText& text);

} // namespace lornix
