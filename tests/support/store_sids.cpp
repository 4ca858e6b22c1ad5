#include "tests/support/store_sids.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

std::string contentsOf(const void* sid)
{
    return {static_cast<const char*>(sid), GetLengthSid(const_cast<void*>(sid))};
}

} // namespace

void* copySid(const void* sid)
{
    if (sid == nullptr || !IsValidSid(const_cast<void*>(sid))) {
        return nullptr;
    }
    const std::string bytes = contentsOf(sid);
    return std::memcpy(std::malloc(bytes.size()), bytes.data(), bytes.size());
}

void* StoreSids::account(std::string_view name)
{
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID sid = nullptr;
    constexpr DWORD kFirstRid = 1001;
    if (!AllocateAndInitializeSid(&authority, 5, SECURITY_NT_NON_UNIQUE, 1, 2, 3,
                                  kFirstRid + static_cast<DWORD>(m_accounts.size()), 0, 0, 0, &sid))
    {
        throw std::runtime_error("no SID");
    }
    m_accounts.push_back(std::make_unique<Account>(Account{std::string(name), contentsOf(sid)}));
    FreeSid(sid);
    Account& made = *m_accounts.back();
    m_accountsBySid[made.sid] = &made;
    return made.sid.data();
}

std::string StoreSids::nameOf(const void* sid) const
{
    if (!IsValidSid(const_cast<void*>(sid))) {
        return {};
    }
    const auto found = m_accountsBySid.find(contentsOf(sid));
    return found == m_accountsBySid.end() ? std::string() : found->second->name;
}

void* StoreSids::copy(const void* sid)
{
    void* const made = copySid(sid);
    m_open += made == nullptr ? 0 : 1;
    return made;
}

void StoreSids::release(void* sid)
{
    m_open -= sid == nullptr ? 0 : 1;
    std::free(sid);
}

SidList* StoreSids::newList(int count, int number)
{
    const auto entries = static_cast<size_t>(std::max(count, 1));
    auto* const list = static_cast<SidList*>(std::malloc(sizeof(SidList) + entries * sizeof(void*)));
    list->count = count;
    list->sids[0] = nullptr;
    m_lists[list] = number;
    return list;
}

bool StoreSids::isStores(SidList* list, const char* what) const
{
    const auto known = m_lists.find(list);
    const bool isStores = known != m_lists.end() && known->second != 0;
    EXPECT_TRUE(isStores) << what << " with a list that is not the store's, or no longer";
    return isStores;
}

SidList* StoreSids::emptyList()
{
    return newList(0, ++m_lastNumber);
}

/// Moved each time, so that a pointer used after a call that grows the list does not go unnoticed.
SidList* StoreSids::grow(SidList* list, int more)
{
    if (list == nullptr) {
        return newList(more, ++m_lastNumber);
    }
    if (!isStores(list, "appendToSidList")) {
        return emptyList();
    }
    SidList* const grown = newList(list->count + more, m_lists[list]);
    const auto size = static_cast<size_t>(list->count) * sizeof(void*);
    std::memcpy(grown->sids, list->sids, size);
    std::memset(list->sids, 0xDD, size);
    m_lists.erase(list);
    std::free(list);
    return grown;
}

SidList* StoreSids::append(SidList* list, void* sid)
{
    SidList* const grown = grow(list, 1);
    grown->sids[grown->count - 1] = sid;
    return grown;
}

SidList* StoreSids::appendAll(SidList* destination, const SidList* source)
{
    const int added = source == nullptr ? 0 : source->count;
    if (added == 0) {
        return destination;
    }
    SidList* const grown = grow(destination, added);
    std::transform(source->sids, source->sids + added, grown->sids + grown->count - added,
                   [this](const void* sid) { return copy(sid); });
    return grown;
}

void StoreSids::releaseList(SidList* list)
{
    if (list == nullptr || !isStores(list, "freeSidList")) {
        return;
    }
    m_lists.erase(list);
    std::for_each(list->sids, list->sids + list->count, [this](void* sid) { release(sid); });
    std::free(list);
}

SidList* StoreSids::callersList(const std::vector<void*>& sids)
{
    m_callersLists.push_back(
        std::make_unique<unsigned char[]>(sizeof(SidList) + sizeof(void*) * sids.size()));
    auto* const list = reinterpret_cast<SidList*>(m_callersLists.back().get());
    list->count = static_cast<int32_t>(sids.size());
    std::copy(sids.begin(), sids.end(), list->sids);
    m_lists[list] = 0;
    return list;
}

void StoreSids::tellByNumber()
{
    m_toldByNumber = true;
    m_lastNumber = 0;
}

std::string StoreSids::numberOf(const SidList* list) const
{
    if (!m_toldByNumber) {
        return {};
    }
    const auto found = m_lists.find(list);
    return found == m_lists.end() ? "stale list"
           : found->second == 0   ? "presets"
                                  : "L" + std::to_string(found->second);
}
