#include "lornix/text/folder_key.h"

#include "lornix/text/lower_case.h"

#include <cstdint>

namespace lornix {
namespace {

constexpr std::size_t kReadableLength = 40;

bool isPlain(char16_t unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9') || unit == u'-';
}

/// FNV-1a over the units' bytes.
std::uint64_t hashOf(std::u16string_view key)
{
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char16_t unit : key) {
        for (const unsigned byte : {unit & 0xFFu, static_cast<unsigned>(unit) >> 8}) {
            hash = (hash ^ byte) * 0x100000001B3u;
        }
    }
    return hash;
}

} // namespace

std::u16string folderKey(std::u16string_view folder)
{
    std::u16string key(folder);
    for (char16_t& unit : key) {
        unit = unit == u'/' ? u'\\' : lowerCase(unit);
    }
    while (key.size() > 1 && key.back() == u'\\') {
        key.pop_back();
    }
    return key;
}

std::string ruleFileName(std::u16string_view key)
{
    const std::u16string_view tail = key.substr(key.rfind(u'\\') + 1);
    std::string name;
    for (const char16_t unit : tail.substr(0, kReadableLength)) {
        // Plain letters only: they are file names on every system, whatever its character set.
        if (isPlain(unit)) {
            name += static_cast<char>(unit);
        } else if (!name.empty() && name.back() != '_') {
            name += '_';
        }
    }
    if (!name.empty() && name.back() != '_') {
        name += '_';
    }
    constexpr char kDigits[] = "0123456789abcdef";
    const std::uint64_t hash = hashOf(key);
    for (int shift = 60; shift >= 0; shift -= 4) {
        name += kDigits[(hash >> shift) & 15];
    }
    return name + ".txt";
}

} // namespace lornix
