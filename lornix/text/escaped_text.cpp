#include "lornix/text/escaped_text.h"

#include <cstdint>

namespace lornix {
namespace {

constexpr std::size_t kEscapeLength = 6; // %uXXXX

bool isHighHalf(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowHalf(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Takes one character from the front; a half that stands alone comes as itself.
char32_t takeCharacter(std::u16string_view& text)
{
    const char32_t unit = text.front();
    text.remove_prefix(1);
    if (!isHighHalf(unit) || text.empty() || !isLowHalf(text.front())) {
        return unit;
    }
    const char32_t low = text.front();
    text.remove_prefix(1);
    return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

void appendCharacter(std::string& bytes, char32_t character)
{
    const auto tail = [&](int shift) {
        bytes += static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        bytes += static_cast<char>(character);
    } else if (character < 0x800) {
        bytes += static_cast<char>(0xC0 | (character >> 6));
        tail(0);
    } else if (character < 0x10000) {
        bytes += static_cast<char>(0xE0 | (character >> 12));
        tail(6);
        tail(0);
    } else {
        bytes += static_cast<char>(0xF0 | (character >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

bool needsEscape(char32_t character)
{
    return character < 0x20 || character == U'%' || (character >= 0x7F && character <= 0x9F) ||
           character == 0x2028 || character == 0x2029 || character == 0xFEFF || isHighHalf(character) ||
           isLowHalf(character);
}

void appendEscape(std::string& line, char32_t unit)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    line += "%u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        line += kDigits[(unit >> shift) & 15];
    }
}

std::optional<char16_t> escapedUnit(std::string_view bytes)
{
    if (bytes.size() < kEscapeLength || bytes[1] != 'u') {
        return std::nullopt;
    }
    unsigned unit = 0;
    for (const char digit : bytes.substr(2, 4)) {
        unsigned value = 0;
        if (digit >= '0' && digit <= '9') {
            value = static_cast<unsigned>(digit - '0');
        } else if ((digit | 0x20) >= 'a' && (digit | 0x20) <= 'f') {
            value = static_cast<unsigned>((digit | 0x20) - 'a') + 10;
        } else {
            return std::nullopt;
        }
        unit = unit << 4 | value;
    }
    return static_cast<char16_t>(unit);
}

/// Reads one character of two to four bytes from the front.
std::optional<char32_t> takeLong(std::string_view& bytes)
{
    const auto first = static_cast<unsigned char>(bytes.front());
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (first < 0xC2 || first > 0xF4 || bytes.size() < length) {
        return std::nullopt;
    }
    char32_t character = first & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if ((byte & 0xC0) != 0x80) {
            return std::nullopt;
        }
        character = character << 6 | (byte & 0x3Fu);
    }
    if (character < kLeast[length] || character > 0x10FFFF || isHighHalf(character) || isLowHalf(character)) {
        return std::nullopt;
    }
    bytes.remove_prefix(length);
    return character;
}

} // namespace

void appendEscaped(std::string& line, std::u16string_view text)
{
    bool atStart = true;
    while (!text.empty()) {
        const char32_t character = takeCharacter(text);
        if (needsEscape(character) || (character == U' ' && (atStart || text.empty()))) {
            appendEscape(line, character);
        } else {
            appendCharacter(line, character);
        }
        atStart = false;
    }
}

std::optional<std::u16string> unescape(std::string_view bytes)
{
    std::u16string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const char first = bytes.front();
        if (first == '%') {
            const auto unit = escapedUnit(bytes);
            if (!unit) {
                return std::nullopt;
            }
            text += *unit;
            bytes.remove_prefix(kEscapeLength);
        } else if (static_cast<unsigned char>(first) < 0x80) {
            text += static_cast<char16_t>(first);
            bytes.remove_prefix(1);
        } else {
            const auto character = takeLong(bytes);
            if (!character) {
                return std::nullopt;
            }
            if (*character < 0x10000) {
                text += static_cast<char16_t>(*character);
            } else {
                text += static_cast<char16_t>(0xD800 + ((*character - 0x10000) >> 10));
                text += static_cast<char16_t>(0xDC00 + ((*character - 0x10000) & 0x3FF));
            }
        }
    }
    return text;
}

void appendUtf8(std::string& bytes, std::u16string_view text)
{
    while (!text.empty()) {
        const char32_t character = takeCharacter(text);
        appendCharacter(bytes, isHighHalf(character) || isLowHalf(character) ? 0xFFFD : character);
    }
}

} // namespace lornix
