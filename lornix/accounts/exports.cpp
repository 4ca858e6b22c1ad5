// The exports about accounts.
#include "lornix/accounts/source.h"

#include "lornix/accounts/remembered_names.h"
#include "lornix/sid.h"
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

std::int32_t countOf(const SidList* list)
{
    return list == nullptr ? 0 : list->count;
}

void expectNames(const SidList* list, std::int32_t first)
{
    if (list == nullptr) {
        return;
    }
    void* const* sids = list->sids;
    for (std::int32_t i = first; i < list->count; ++i) {
        expectName(sids[i]);
    }
}

/// Lets the sources add to a list, what stands behind its first so many once.
template <class Add>
SidList* collect(const wchar_t* server, SidList* list, std::int32_t first, Add add)
{
    SidSink sink(list);
    quietly(false, [&] {
        for (AccountSource* source : accountSources()) {
            sink.skipListed(first);
            const std::int32_t before = countOf(sink.list());
            add(*source, sink);
            if (source == &platformAccounts()) {
                expectNames(sink.list(), before); // whoever lists accounts shows them
            }
            if (source->answersAlone(server)) {
                break;
            }
        }
        return true;
    });
    return sink.list();
}

/// The answer of the first source that has one.
template <class Ask>
auto firstAnswer(Ask ask) -> decltype(ask(platformAccounts()))
{
    for (AccountSource* source : accountSources()) {
        if (auto answer = ask(*source); answer != decltype(answer)()) {
            return answer;
        }
    }
    return {};
}

wchar_t* handOver(const std::wstring& text)
{
    return text.empty() ? nullptr : _wcsdup(text.c_str());
}

} // namespace

void SidSink::skipListed(std::int32_t first)
{
    void* const* sids = m_list == nullptr ? nullptr : m_list->sids;
    for (std::int32_t i = first; i < countOf(m_list); ++i) {
        m_known.emplace(sidKey(sids[i]));
    }
}

const std::vector<AccountSource*>& accountSources()
{
    static const std::vector<AccountSource*> sources{&fileAccounts(), &platformAccounts()};
    return sources;
}

} // namespace lornix

using lornix::AccountSource;
using lornix::SidSink;

SidList* enumerateUsers(const wchar_t* server, SidList* list)
{
    return lornix::collect(server, list, lornix::countOf(list),
                           [&](AccountSource& source, SidSink& sink) { source.addUsers(server, sink); });
}

SidList* enumerateGroups(const wchar_t* server, SidList* list)
{
    return lornix::collect(server, list, lornix::countOf(list),
                           [&](AccountSource& source, SidSink& sink) { source.addGroups(server, sink); });
}

SidList* enumerateGroupUsers(const wchar_t* server, const wchar_t* group, SidList* list)
{
    if (group == nullptr || *group == L'\0') {
        return list;
    }
    // Each member once, whichever servers know it: it gets one rule.
    return lornix::collect(server, list, 0, [&](AccountSource& source, SidSink& sink) {
        source.addMembers(server, group, sink);
    });
}

wchar_t* getDomainServer(void)
{
    return lornix::quietly<wchar_t*>(nullptr, [] {
        return lornix::handOver(
            lornix::firstAnswer([](AccountSource& source) { return source.domainServer(); }));
    });
}

wchar_t* getDomainServerByName(const wchar_t* server)
{
    if (server == nullptr || *server == L'\0') {
        return nullptr;
    }
    return lornix::quietly<wchar_t*>(nullptr, [&] {
        return lornix::handOver(
            lornix::firstAnswer([&](AccountSource& source) { return source.secondServer(server); }));
    });
}

void* getDomainSid(void)
{
    return lornix::quietly<void*>(nullptr, [] {
        return lornix::firstAnswer([](AccountSource& source) { return source.domainSid(); });
    });
}

void* getSidByNameW(const wchar_t* name)
{
    if (name == nullptr) {
        return nullptr;
    }
    return lornix::quietly<void*>(nullptr, [&] {
        return lornix::firstAnswer([&](AccountSource& source) { return source.sidOf(name); });
    });
}

wchar_t* getAccountBySidW(const void* sid, wchar_t* buffer, int capacity)
{
    if (buffer == nullptr || capacity <= 0) {
        return nullptr;
    }
    return lornix::quietly<wchar_t*>(nullptr, [&]() -> wchar_t* {
        const std::wstring name = lornix::accountName(sid);
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
    lornix::quietly(false, [&] {
        std::wstring name = sid == nullptr ? L"Anyone" : lornix::accountName(sid);
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
