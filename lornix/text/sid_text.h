// Security identifiers as S-1-... text.
// The platform's own conversion also takes abbreviations that mean another account on each machine, and allocates
// for every one; a stored file needs it strict, and a hundred thousand times.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lornix {

/// The platform's limit: 8 bytes and 15 numbers of 4.
inline constexpr std::size_t kMaxSidSize = 68;

/// More than the text of any takes.
inline constexpr std::size_t kMaxSidText = 200;

/// A binary security identifier by value. Empty: no account.
class Sid {
public:
    Sid() = default;

    /// @param bytes  a valid identifier of at most kMaxSidSize bytes.
    explicit Sid(std::span<const std::uint8_t> bytes);

    bool isEmpty() const { return m_size == 0; }
    std::span<const std::uint8_t> bytes() const { return {m_bytes.data(), m_size}; }

private:
    std::array<std::uint8_t, kMaxSidSize> m_bytes{};
    std::uint8_t m_size = 0;
};

/// Appends the text of a valid identifier.
void appendSidText(std::string& line, std::span<const std::uint8_t> sid);

/// The word of a file for an account.
/// @param sid  empty for anyone.
void appendAccount(std::string& line, std::span<const std::uint8_t> sid);

/// Reads such a word.
/// @return nothing when it is none.
std::optional<Sid> parseAccount(std::string_view word);

/// Writes the words for many accounts, one after the other: those of a domain differ in their last number, and only that
/// is then put together anew.
class SidSpeller {
public:
    /// Writes what appendAccount does, at most kMaxSidText long.
    /// @return its end.
    char* put(char* to, std::span<const std::uint8_t> sid);

private:
    std::vector<std::uint8_t> m_start; // of the identifier before, up to its last number
    std::string m_text;                // of that
};

/// @return nothing unless the whole text is one identifier.
std::optional<Sid> parseSid(std::string_view text);

} // namespace lornix
