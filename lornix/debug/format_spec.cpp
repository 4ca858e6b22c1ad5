#include "lornix/debug/format_spec.h"

#include <algorithm>

namespace lornix {
namespace {

constexpr int kMostWidth = 100000; // more is a mistake of the caller

bool isOneOf(char character, std::string_view set)
{
    return set.find(character) != std::string_view::npos;
}

/// Reads digits, or a star, at a position.
void readNumber(std::string_view format, std::size_t& at, int& number, bool& given, int& stars)
{
    if (at < format.size() && format[at] == '*') {
        given = true;
        ++stars;
        ++at;
        return;
    }
    number = 0;
    for (; at < format.size() && format[at] >= '0' && format[at] <= '9'; ++at) {
        number = std::min(number * 10 + (format[at] - '0'), kMostWidth);
    }
}

/// The size prefixes that the platform's runtime knows.
std::string_view readSize(std::string_view format, std::size_t& at)
{
    for (const std::string_view size : {"I64", "I32", "I", "hh", "h", "ll", "l", "L", "w", "j", "z", "t"}) {
        if (format.substr(at).starts_with(size)) {
            at += size.size();
            return size;
        }
    }
    return {};
}

FormatSpec::Kind kindOf(std::string_view size, char conversion)
{
    const bool wide = size == "l" || size == "ll" || size == "w" || size == "L";
    switch (conversion) {
    case 's':
        return wide ? FormatSpec::Kind::kWideText : FormatSpec::Kind::kOther;
    case 'c':
        return wide ? FormatSpec::Kind::kWideUnit : FormatSpec::Kind::kOther;
    case 'S':
        return size.starts_with('h') ? FormatSpec::Kind::kOther : FormatSpec::Kind::kWideText;
    case 'C':
        return size.starts_with('h') ? FormatSpec::Kind::kOther : FormatSpec::Kind::kWideUnit;
    case '%':
        return FormatSpec::Kind::kPercent;
    default:
        return FormatSpec::Kind::kOther;
    }
}

} // namespace

FormatSpec takeSpec(std::string_view& format)
{
    FormatSpec spec;
    std::size_t at = std::min(format.find('%'), format.size());
    if (at == 0) {
        ++at;
        for (; at < format.size() && isOneOf(format[at], "-+ #0"); ++at) {
            spec.leftAligned |= format[at] == '-';
        }
        readNumber(format, at, spec.width, spec.widthGiven, spec.stars);
        if (at < format.size() && format[at] == '.') {
            ++at;
            readNumber(format, at, spec.limit, spec.limitGiven, spec.stars);
        }
        const std::string_view size = readSize(format, at);
        if (at < format.size()) {
            spec.kind = kindOf(size, format[at]);
            ++at;
        }
    }
    spec.text = format.substr(0, at);
    format.remove_prefix(at);
    return spec;
}

} // namespace lornix
