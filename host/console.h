// Standard output and standard error of a program with windows.
#pragma once

#include <string>

namespace host {

/// Writes lines: characters to a console, UTF-8 to anything else. @param error  to standard error. A program with
/// windows has neither when it was started from the desktop: the text is dropped then.
void printText(const std::wstring& text, bool error = false);

} // namespace host
