// Accounts of this machine, its domain and the servers that are named. A server of null is this machine.
#pragma once

#include "lornix/accounts/sid_sink.h"

#include <string>

namespace lornix {

void addUsers(const wchar_t* server, SidSink& sink);
void addGroups(const wchar_t* server, SidSink& sink);

/// @param group  with or without its domain.
void addMembers(const wchar_t* server, const std::wstring& group, SidSink& sink);

/// A server of this machine's domain, without backslashes in front; empty when there is none.
std::wstring domainServer();

/// The same of a second one, to be asked beside it.
std::wstring secondServer(const std::wstring& server);

} // namespace lornix
