// Names of accounts, remembered for a while.
#pragma once

#include "lornix/accounts/source.h"

#include <string>

namespace lornix {

/// DOMAIN\name, or empty for an account that nobody knows. The platform is not asked again for a minute:
/// a list of a hundred thousand rules asks for few accounts very often, and asking for one that is gone may take
/// a domain server seconds. May be called on any thread.
std::wstring accountName(const void* sid);

/// Tells whose names are likely to be asked for soon, and in which order: at the first of them the platform is asked
/// for many at once. May be called on any thread.
/// @param sid  null or valid.
void expectName(const void* sid) noexcept;

} // namespace lornix
