#include "frame/number_text.h"

wchar_t* writeNumber(wchar_t* to, std::int64_t value)
{
    auto magnitude = static_cast<std::uint64_t>(value);
    if (value < 0) {
        *to++ = L'-';
        magnitude = 0 - magnitude;
    }
    wchar_t reversed[20];
    int digits = 0;
    do {
        reversed[digits++] = static_cast<wchar_t>(L'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    while (digits > 0) {
        *to++ = reversed[--digits];
    }
    return to;
}
