// The exports about accounts. The file of them is asked first, then the platform: lists are those of both, a question
// goes to the first that answers.
#include "lornix/accounts/account_file.h"
#include "lornix/accounts/name_lookup.h"
#include "lornix/accounts/platform_accounts.h"
#include "lornix/accounts/remembered_names.h"
#include "lornix/sid.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"

#include <algorithm>
#include <cwchar>
#include <exception>

namespace lornix {
namespace {

/// Runs what an export does. Accounts are asked for on any thread and leave lornixLastError alone.
template <class Result, class Call>
Result quietly(Result failed, Call call) noexcept
{
    try {
        return call();
    } catch (const std::exception& problem) {
        ODS("lornix: accounts: %s\n", problem.what());
        return failed;
    }
}

std::u16string serverName(const wchar_t* server)
{
    return server == nullptr ? std::u16string() : fromWide(server);
}

/// Adds to a list; what stands behind its first so many, once.
/// @param listed    gives the accounts that the file has for it.
/// @param platform  adds those of the platform to a sink.
template <class Listed, class Platform>
SidList* collect(const wchar_t* server, SidList* list, std::int32_t first, Listed listed, Platform platform)
{
    SidSink sink(list);
    quietly(false, [&] {
        const auto file = fileAccountsNow();
        sink.skipListed(first);
        for (const AccountDirectory::Account* account : listed(*file)) {
            sink.add(account->sid.bytes().data());
        }
        if (file->domainOf(serverName(server)) == nullptr) { // otherwise the file alone knows the server
            sink.skipListed(first);
            const std::int32_t before = sink.count();
            platform(sink);
            for (std::int32_t i = before; i < sink.count(); ++i) {
                expectName(sink.at(i)); // whoever lists accounts shows them
            }
        }
        return true;
    });
    return sink.list();
}

template <class Platform>
SidList* collect(const wchar_t* server, SidList* list, AccountKind kind, Platform platform)
{
    return collect(
        server, list, SidSink(list).count(),
        [&](const AccountDirectory& file) { return file.accountsOf(serverName(server), kind); }, platform);
}

std::wstring accountName(const void* sid)
{
    if (!isSid(sid)) {
        return {};
    }
    const auto file = fileAccounts();
    const AccountDirectory::Account* listed = file->find(sidBytes(sid));
    return listed == nullptr ? platformName(sid) : toWide(listed->name);
}

wchar_t* handOver(const std::wstring& text)
{
    return text.empty() ? nullptr : _wcsdup(text.c_str());
}

} // namespace
} // namespace lornix

using namespace lornix;

SidList* enumerateUsers(const wchar_t* server, SidList* list)
{
    return collect(server, list, AccountKind::kUser, [&](SidSink& sink) { addUsers(server, sink); });
}

SidList* enumerateGroups(const wchar_t* server, SidList* list)
{
    return collect(server, list, AccountKind::kGroup, [&](SidSink& sink) { addGroups(server, sink); });
}

SidList* enumerateGroupUsers(const wchar_t* server, const wchar_t* group, SidList* list)
{
    if (group == nullptr || *group == L'\0') {
        return list;
    }
    // Each member once, whichever servers know it: it gets one rule.
    return collect(
        server, list, 0,
        [&](const AccountDirectory& file) {
            // Whoever has not asked a server yet asks this machine, and it knows the groups of its domain too.
            const bool isAsked = server == nullptr || file.domainOf(fromWide(server)) != nullptr;
            return isAsked ? file.usersOfGroup(fromWide(group)) : AccountDirectory::Accounts();
        },
        [&](SidSink& sink) { addMembers(server, group, sink); });
}

wchar_t* getDomainServer(void)
{
    return quietly<wchar_t*>(nullptr, [] {
        const auto file = fileAccountsNow();
        const AccountDirectory::Domain* listed = file->firstDomain();
        return handOver(listed == nullptr ? domainServer() : toWide(listed->server));
    });
}

wchar_t* getDomainServerByName(const wchar_t* server)
{
    if (server == nullptr || *server == L'\0') {
        return nullptr;
    }
    return quietly<wchar_t*>(nullptr, [&] {
        const auto file = fileAccounts();
        if (file->domainOf(fromWide(server)) == nullptr) {
            return handOver(secondServer(server));
        }
        const AccountDirectory::Domain* next = file->domainBehind(fromWide(server));
        return handOver(next == nullptr ? std::wstring() : toWide(next->server));
    });
}

void* getDomainSid(void)
{
    return quietly<void*>(nullptr, [] {
        const auto file = fileAccountsNow();
        const AccountDirectory::Domain* listed = file->firstDomain();
        return listed == nullptr ? primaryDomainSid().release() : sidDup(listed->sid.bytes().data());
    });
}

void* getSidByNameW(const wchar_t* name)
{
    if (name == nullptr) {
        return nullptr;
    }
    return quietly<void*>(nullptr, [&] {
        const auto file = fileAccounts();
        const AccountDirectory::Account* listed = file->find(fromWide(name));
        return listed == nullptr ? lookUpSid(nullptr, name).release() : sidDup(listed->sid.bytes().data());
    });
}

wchar_t* getAccountBySidW(const void* sid, wchar_t* buffer, int capacity)
{
    if (buffer == nullptr || capacity <= 0) {
        return nullptr;
    }
    return quietly<wchar_t*>(nullptr, [&]() -> wchar_t* {
        const std::wstring name = accountName(sid);
        // A name that was cut would be somebody else's. The buffer stays as it is: it may hold what is to be
        // shown instead.
        if (name.empty() || name.size() >= static_cast<std::size_t>(capacity)) {
            return nullptr;
        }
        return std::wcscpy(buffer, name.c_str());
    });
}

void lornixAccountName(const void* sid, wchar_t* buffer, int capacity)
{
    if (buffer == nullptr || capacity <= 0) {
        return;
    }
    *buffer = L'\0';
    quietly(false, [&] {
        std::wstring name = sid == nullptr ? L"Anyone" : accountName(sid);
        if (name.empty()) {
            wchar_t text[256];
            getTextualSidW(sid, text, static_cast<int>(std::size(text)));
            name = text;
        }
        const std::size_t length = std::min(name.size(), static_cast<std::size_t>(capacity) - 1);
        std::copy_n(name.begin(), length, buffer);
        buffer[length] = L'\0';
        return true;
    });
}
