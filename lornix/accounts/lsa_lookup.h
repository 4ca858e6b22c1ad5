// Many accounts in one question to the platform: each question may travel to a domain server.
#pragma once

#include "store/owned.h"

#include <optional>
#include <string>
#include <vector>

namespace lornix {

using SidBlock = CBlock<void>;

/// Names of accounts, DOMAIN\name; empty for one that nobody knows.
/// @param sids  binary.
/// @return nothing when the platform does not answer so many at once.
std::optional<std::vector<std::wstring>> lookUpNames(const std::vector<std::string>& sids);

/// Accounts by name, as one machine knows them; null for one that is none.
/// @param server  null for this machine.
/// @return nothing when the platform does not answer so many at once.
std::optional<std::vector<SidBlock>> lookUpSids(const wchar_t* server,
                                                const std::vector<std::wstring>& names);

/// The identifier of this machine's domain, null without one.
SidBlock primaryDomainSid();

/// A name with the domain in front, where there is one: well-known accounts such as Everyone belong to none.
std::wstring withDomain(const std::wstring& domain, const std::wstring& name);

/// Whether what a name was found to be is an account.
bool isAccountUse(int use);

} // namespace lornix
