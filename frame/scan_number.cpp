#include "frame/scan_number.h"

#include <cwctype>

ScannedNumber scanNumber(const wchar_t* text)
{
    ScannedNumber result;
    while (*text != L'\0' && std::iswspace(static_cast<std::wint_t>(*text)) != 0) {
        ++text;
    }
    const bool negative = *text == L'-';
    if (*text == L'-' || *text == L'+') {
        ++text;
    }
    std::uint64_t magnitude = 0;
    for (; *text >= L'0' && *text <= L'9'; ++text) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(*text - L'0');
        result.found = true;
    }
    if (!result.found) {
        return result;
    }
    result.number = static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
    result.hasNext = *text != L'\0';
    result.next = *text;
    return result;
}

int unitShift(wchar_t unit)
{
    switch (unit) {
    case L'k':
    case L'K':
        return 10;
    case L'm':
    case L'M':
        return 20;
    case L'g':
    case L'G':
        return 30;
    case L't':
    case L'T':
        return 40;
    default:
        return 0;
    }
}
