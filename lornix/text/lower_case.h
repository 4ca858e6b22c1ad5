// Letter case without a locale.
#pragma once

namespace lornix {

/// The small letter of a capital one; everything else, halves of surrogate pairs too, comes back as it is.
char16_t lowerCaseBeyondAscii(char16_t unit);

inline char16_t lowerCase(char16_t unit)
{
    if (unit < 0x80) {
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    }
    return lowerCaseBeyondAscii(unit);
}

} // namespace lornix
