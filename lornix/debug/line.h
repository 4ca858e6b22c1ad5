// Debug lines, put together as the runtime's printf would, but without losing wide text on the way.
#pragma once

#include <cstdarg>
#include <string>

namespace lornix {

/// Formats as the runtime does. Wide strings and characters come through whole, whatever the 8-bit code page is:
/// the runtime would give up on the whole line.
std::wstring formatLine(const char* format, va_list arguments);

} // namespace lornix
