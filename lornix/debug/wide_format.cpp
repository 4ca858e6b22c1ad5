#include "lornix/debug/wide_format.h"

#include <algorithm>

namespace lornix {
namespace {

std::string_view takeWhile(std::string_view& rest, std::string_view set)
{
    const std::string_view taken = rest.substr(0, std::min(rest.find_first_not_of(set), rest.size()));
    rest.remove_prefix(taken.size());
    return taken;
}

/// The size prefixes that the platform's runtime knows.
std::string_view takeSize(std::string_view& rest)
{
    for (const std::string_view size : {"I64", "I32", "I", "hh", "h", "ll", "l", "L", "w", "j", "z", "t"}) {
        if (rest.starts_with(size)) {
            rest.remove_prefix(size.size());
            return size;
        }
    }
    return {};
}

/// A width or a limit: digits or a star.
std::string_view takeNumber(std::string_view& rest)
{
    constexpr std::size_t kMostDigits = 5;
    return rest.starts_with('*') ? takeWhile(rest, "*").substr(0, 1)
                                 : takeWhile(rest, "0123456789").substr(0, kMostDigits);
}

std::string textConversion(std::string_view size, char conversion)
{
    const bool isCapital = conversion == 'S' || conversion == 'C';
    const bool isWide = size.starts_with('h') ? false : size.empty() ? isCapital : true;
    return {isWide ? 'l' : 'h', conversion == 'S' || conversion == 's' ? 's' : 'c'};
}

/// @param rest  behind the percent sign.
std::string takeConversion(std::string_view& rest)
{
    const std::string_view whole = rest;
    std::string taken = "%";
    taken += takeWhile(rest, "-+ #0");
    taken += takeNumber(rest);
    if (rest.starts_with('.')) {
        taken += takeWhile(rest, ".").substr(0, 1);
        taken += takeNumber(rest);
    }
    const std::string_view size = takeSize(rest);
    if (rest.empty()) {
        return "%%" + std::string(whole);
    }
    const char conversion = rest.front();
    rest.remove_prefix(1);
    if (conversion == '%') {
        return "%%";
    }
    if (std::string_view("sScC").find(conversion) != std::string_view::npos) {
        return taken + textConversion(size, conversion);
    }
    return taken.append(size) + conversion;
}

} // namespace

std::string wideFormat(std::string_view format)
{
    std::string wide;
    while (!format.empty()) {
        const std::string_view text = format.substr(0, std::min(format.find('%'), format.size()));
        wide += text;
        format.remove_prefix(text.size());
        if (!format.empty()) {
            format.remove_prefix(1);
            wide += takeConversion(format);
        }
    }
    return wide;
}

} // namespace lornix
