// What the environment of the process says.
#pragma once

#include <string>

namespace lornix {

/// Value of an environment variable as it is now; empty when there is none. The last error is undefined afterwards.
std::wstring environmentValue(const wchar_t* name);

} // namespace lornix
