#include "accounts/filter_match.h"

#include "frame/ignore_case.h"

#include <cwctype>

namespace {

const wchar_t* skipWhiteSpace(const wchar_t* text)
{
    while (*text != L'\0' && std::iswspace(static_cast<std::wint_t>(*text)) != 0) {
        ++text;
    }
    return text;
}

} // namespace

bool passesFilter(const wchar_t* text, const wchar_t* filter)
{
    return startsWithIgnoringCase(text, filter, wcslen(filter));
}

bool equalsFilter(const wchar_t* text, const wchar_t* filter)
{
    for (;; ++text, ++filter) {
        text = skipWhiteSpace(text);
        filter = skipWhiteSpace(filter);
        if (std::towlower(static_cast<std::wint_t>(*text)) !=
            std::towlower(static_cast<std::wint_t>(*filter)))
        {
            return false;
        }
        if (*text == L'\0') {
            return true;
        }
    }
}
