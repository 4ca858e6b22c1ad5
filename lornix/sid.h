// Binary security identifiers, on the platform's functions.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace lornix {

/// @param sid  null is none.
bool isSid(const void* sid);

/// @param sid  null, or valid.
/// @return its bytes; none for null. Storing rules asks for those of a hundred thousand.
inline std::span<const std::uint8_t> sidBytes(const void* sid)
{
    if (sid == nullptr) {
        return {};
    }
    // As everywhere on the platform: eight bytes, the second of which tells how many numbers of four follow.
    const auto* bytes = static_cast<const std::uint8_t*>(sid);
    return {bytes, 8 + std::size_t{4} * bytes[1]};
}

/// Bytes of an identifier as a key of tables.
inline std::string_view sidKey(std::span<const std::uint8_t> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
inline std::string_view sidKey(const void* sid)
{
    return sidKey(sidBytes(sid));
}

} // namespace lornix
