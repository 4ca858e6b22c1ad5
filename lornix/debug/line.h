// Debug lines, put together by the runtime without losing wide text on the way.
#pragma once

#include <cstdarg>
#include <string>

namespace lornix {

/// Formats as the runtime does. Wide strings and characters come through whole, whatever the 8-bit code page is: the
/// narrow formatter would give up on the whole line. What is longer than a million characters is cut.
std::wstring formatLine(const char* format, va_list arguments);

} // namespace lornix
