// Names of accounts, and accounts by name, as the platform knows them. Many are asked for in one question, as each may
// travel to a domain server; where the platform refuses that, it is asked one by one.
#pragma once

#include "lornix/accounts/sid_sink.h"

#include <string>
#include <vector>

namespace lornix {

/// Names of accounts, DOMAIN\name; empty for one that nobody knows.
/// @param sids  binary.
/// @return at least that of the first.
std::vector<std::wstring> lookUpNames(const std::vector<std::string>& sids);

/// An account by name, as one machine knows it; null for a name that is none's.
/// @param server  null for this machine.
SidBlock lookUpSid(const wchar_t* server, const std::wstring& name);

/// Adds those of some names.
void lookUpSids(const wchar_t* server, const std::vector<std::wstring>& names, SidSink& sink);

/// The identifier of this machine's domain, null without one.
SidBlock primaryDomainSid();

} // namespace lornix
