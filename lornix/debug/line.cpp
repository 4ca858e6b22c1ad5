#include "lornix/debug/line.h"

#include "lornix/debug/wide_format.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>

namespace lornix {
namespace {

std::wstring widened(const std::string& text)
{
    const auto length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

} // namespace

std::wstring formatLine(const char* format, va_list arguments)
{
    constexpr std::size_t kLongest = 1 << 20;
    const std::wstring wide = widened(wideFormat(format));
    for (std::size_t room = 1 << 9;; room *= 4) {
        std::wstring line(std::min(room, kLongest), L'\0');
        va_list again{};
        va_copy(again, arguments);
        const int length = _vsnwprintf(line.data(), line.size(), wide.c_str(), again);
        va_end(again);
        if (length >= 0 || room >= kLongest) {
            // Below 0: there is no room, or something cannot be shown; what came before it can.
            line.resize(length >= 0 ? static_cast<std::size_t>(length) : wcsnlen(line.data(), line.size()));
            return line;
        }
    }
}

} // namespace lornix
