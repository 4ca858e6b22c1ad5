// Letter case without a locale.
#pragma once

namespace lornix {

/// The small letter of a capital one; everything else, halves of surrogate pairs too, comes back as it is.
char16_t lowerCase(char16_t unit);

} // namespace lornix
