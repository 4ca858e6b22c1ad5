// The platform's wide text and the UTF-16 text of the logic: the same units, two types.
#pragma once

#include <string>
#include <string_view>

namespace lornix {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline std::u16string fromWide(std::wstring_view text)
{
    return {text.begin(), text.end()};
}

inline std::wstring toWide(std::u16string_view text)
{
    return {text.begin(), text.end()};
}

} // namespace lornix
