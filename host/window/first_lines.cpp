#include "host/window/first_lines.h"

#include <algorithm>

namespace host {

std::wstring firstLines(const std::wstring& text, size_t most)
{
    size_t end = 0;
    for (size_t line = 0; line < most; ++line) {
        end = text.find(L'\n', line == 0 ? 0 : end + 1);
        if (end == std::wstring::npos) {
            return text;
        }
    }
    const auto more = 1 + std::count(text.begin() + static_cast<std::ptrdiff_t>(end) + 1, text.end(), L'\n');
    return text.substr(0, end) + L"\n(and " + std::to_wstring(more) +
           (more == 1 ? L" more line)" : L" more lines)");
}

} // namespace host
