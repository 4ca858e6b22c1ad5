// A long text for a box of a size that fits on the screen.
#pragma once

#include <string>

namespace host {

/// @return the first lines of a text, and how many more there are when not all of them.
/// @param most  lines to keep; 1 or more.
std::wstring firstLines(const std::wstring& text, size_t most);

} // namespace host
