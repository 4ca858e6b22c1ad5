#include "lornix/text/sid_text.h"

#include "lornix/text/put_text.h"

#include <algorithm>
#include <charconv>

namespace lornix {
namespace {

constexpr std::size_t kHeadSize = 8; // revision, number of sub-authorities, authority in 6 bytes
constexpr std::size_t kNumberSize = 4;
constexpr std::size_t kMaxSubAuthorities = 15;
constexpr std::string_view kAnyone = "anyone";
constexpr std::uint64_t kMaxAuthority = 0xFFFFFFFFFFFFu;

char* putSubAuthorities(char* to, std::span<const std::uint8_t> rest)
{
    for (; rest.size() >= kNumberSize; rest = rest.subspan(kNumberSize)) {
        const std::uint32_t number =
            static_cast<std::uint32_t>(rest[0]) | static_cast<std::uint32_t>(rest[1]) << 8 |
            static_cast<std::uint32_t>(rest[2]) << 16 | static_cast<std::uint32_t>(rest[3]) << 24;
        *to++ = '-';
        to = putNumber(to, number);
    }
    return to;
}

/// Takes a number from the front, and the dash behind it if there is one; a number must follow a dash.
template <class Number>
bool takeNumber(std::string_view& text, Number& number)
{
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) {
        text.remove_prefix(2);
    }
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, hexadecimal ? 16 : 10);
    if (error != std::errc()) {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (text.empty()) {
        return true;
    }
    if (text.front() != '-' || text.size() == 1) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

} // namespace

Sid::Sid(std::span<const std::uint8_t> bytes)
    : m_size(static_cast<std::uint8_t>(std::min(bytes.size(), kMaxSidSize)))
{
    std::copy_n(bytes.begin(), m_size, m_bytes.begin());
}

void appendSidText(std::string& line, std::span<const std::uint8_t> sid)
{
    std::uint64_t authority = 0;
    for (const std::uint8_t byte : sid.subspan(2, 6)) {
        authority = authority << 8 | byte;
    }
    const bool isLong = authority > 0xFFFFFFFFu;
    char text[kMaxSidText] = "S-";
    char* to = putNumber(text + 2, static_cast<unsigned>(sid[0]));
    to = putText(to, isLong ? "-0x" : "-");
    to = putSubAuthorities(putNumber(to, authority, isLong ? 16 : 10), sid.subspan(kHeadSize));
    line.append(text, static_cast<std::size_t>(to - text));
}

void appendAccount(std::string& line, std::span<const std::uint8_t> sid)
{
    if (sid.empty()) {
        line += kAnyone;
    } else {
        appendSidText(line, sid);
    }
}

std::optional<Sid> parseAccount(std::string_view word)
{
    return word == kAnyone ? Sid() : parseSid(word);
}

char* SidSpeller::put(char* to, std::span<const std::uint8_t> sid)
{
    if (sid.empty()) {
        return putText(to, kAnyone);
    }
    const auto start = sid.first(std::max(kHeadSize, sid.size() - kNumberSize));
    if (!std::ranges::equal(start, m_start)) {
        m_start.assign(start.begin(), start.end());
        m_text.clear();
        appendSidText(m_text, start);
    }
    return putSubAuthorities(putText(to, m_text), sid.subspan(start.size()));
}

std::optional<Sid> parseSid(std::string_view text)
{
    constexpr std::string_view kStart = "S-1-";
    if (!text.starts_with(kStart)) {
        return std::nullopt;
    }
    text.remove_prefix(kStart.size());
    std::uint64_t authority = 0;
    if (!takeNumber(text, authority) || authority > kMaxAuthority) {
        return std::nullopt;
    }
    std::array<std::uint8_t, kMaxSidSize> bytes{1};
    for (std::size_t i = 0; i < 6; ++i) {
        bytes[2 + i] = static_cast<std::uint8_t>(authority >> (40 - 8 * i));
    }
    std::size_t size = kHeadSize;
    while (!text.empty()) {
        std::uint32_t number = 0;
        if (bytes[1] == kMaxSubAuthorities || !takeNumber(text, number)) {
            return std::nullopt;
        }
        ++bytes[1];
        for (int shift = 0; shift < 32; shift += 8) {
            bytes[size++] = static_cast<std::uint8_t>(number >> shift);
        }
    }
    return Sid(std::span(bytes).first(size));
}

} // namespace lornix
