// A printf format as the runtime's wide formatter reads it.
#pragma once

#include <string>
#include <string_view>

namespace lornix {

/// Narrow and wide conversions of text trade places between the two formatters: each gets the size that says what is
/// meant, "%s" becomes "%hs", "%S" becomes "%ls". A conversion without an end becomes text, and a width has five digits
/// at most: what is longer is a mistake.
std::string wideFormat(std::string_view format);

} // namespace lornix
