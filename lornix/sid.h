// Binary security identifiers, on the platform's functions.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace lornix {

/// @param sid  null is none.
bool isSid(const void* sid);

/// @param sid  null, or valid.
/// @return its bytes; none for null.
std::span<const std::uint8_t> sidBytes(const void* sid);

/// The same bytes as a key of tables.
std::string_view sidKey(const void* sid);

} // namespace lornix
