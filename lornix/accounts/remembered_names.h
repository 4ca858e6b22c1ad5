// Names that the platform gave, remembered for a while. May be asked for on any thread.
#pragma once

#include <string>

namespace lornix {

/// DOMAIN\name, or empty for an account that the platform does not know. It is not asked again for a minute: a list of a
/// hundred thousand rules asks for few accounts very often, and asking for one that is gone may take a domain server
/// seconds.
/// @param sid  valid.
std::wstring platformName(const void* sid);

/// Tells whose names are likely to be asked for soon, and in which order: at the first of them the platform is asked
/// for many at once.
/// @param sid  null or valid.
void expectName(const void* sid) noexcept;

} // namespace lornix
