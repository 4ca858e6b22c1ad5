// UTF-16 text in UTF-8 files, one line each, losing nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lornix {

/// Appends a text as UTF-8. What cannot stand in a line as it is becomes %uXXXX, the hexadecimal number of the
/// UTF-16 unit: control characters, line and paragraph separators, the byte order mark, halves of surrogate pairs
/// that stand alone, the percent sign, and a blank at the start or the end.
void appendEscaped(std::string& line, std::u16string_view text);

/// @return the text again; nothing when the bytes are no valid UTF-8 or an escape is none.
std::optional<std::u16string> unescape(std::string_view bytes);

/// Appends a text as UTF-8 for reading only: a half of a surrogate pair becomes the replacement character.
void appendUtf8(std::string& bytes, std::u16string_view text);

} // namespace lornix
