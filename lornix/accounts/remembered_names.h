// Names of accounts, remembered for a while.
#pragma once

#include <string>

namespace lornix {

/// DOMAIN\name, or empty for an account that nobody knows. The platform is not asked again for a minute:
/// a list of a hundred thousand rules asks for few accounts very often, and asking for one that is gone may take
/// a domain server seconds. May be called on any thread.
std::wstring accountName(const void* sid);

} // namespace lornix
