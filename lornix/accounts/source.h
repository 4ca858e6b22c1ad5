// Who knows accounts. The exports ask here; behind it stands the platform, and another source may stand beside it.
#pragma once

#include "lornix/sid.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace lornix {

/// Collects identifiers for a list of the border. An account that one source gave is not taken from the next.
class SidSink {
public:
    /// @param list  to grow, or null.
    explicit SidSink(SidList* list)
        : m_list(list)
    {
    }

    /// Copies a valid identifier; others are left out.
    void add(const void* sid) { adopt(sidDup(sid)); }

    /// Takes over a malloc block; null is left out.
    void adopt(void* sid)
    {
        CBlock<void> own(sid);
        if (own != nullptr && (m_known.empty() || !m_known.contains(std::string(sidKey(sid))))) {
            m_list = appendToSidList(m_list, own.release());
        }
    }

    /// From here on, the accounts that stand in the list behind the first so many are left out.
    void skipListed(std::int32_t first);

    SidList* list() const { return m_list; }

private:
    SidList* m_list;
    std::unordered_set<std::string> m_known;
};

/// A source of accounts. A server of null is this machine.
class AccountSource {
public:
    AccountSource() = default;
    AccountSource(const AccountSource&) = delete;
    AccountSource& operator=(const AccountSource&) = delete;
    virtual ~AccountSource() = default;

    /// Whether no other source is to be asked about a server: it is one that only this source knows of.
    virtual bool answersAlone(const wchar_t* /*server*/) { return false; }

    virtual void addUsers(const wchar_t* server, SidSink& sink) = 0;
    virtual void addGroups(const wchar_t* server, SidSink& sink) = 0;
    virtual void addMembers(const wchar_t* server, const std::wstring& group, SidSink& sink) = 0;

    /// DOMAIN\name, or empty when the source does not know the account.
    virtual std::wstring nameOf(const void* sid) = 0;

    /// The names of some accounts, by the bytes of their identifiers; at least that of the first.
    virtual std::vector<std::wstring> namesOf(const std::vector<std::string>& sids)
    {
        return {nameOf(sids.front().data())};
    }

    /// A malloc block, or null when the source does not know the name.
    virtual void* sidOf(const std::wstring& name) = 0;

    /// Without backslashes in front; empty when there is none.
    virtual std::wstring domainServer() = 0;
    virtual std::wstring secondServer(const std::wstring& server) = 0;

    /// A malloc block, or null.
    virtual void* domainSid() = 0;
};

/// The sources, to be asked in this order: lists are those of all, a question goes to the first that answers.
const std::vector<AccountSource*>& accountSources();

/// The accounts of the account directory file, see account_directory.h.
AccountSource& fileAccounts();

/// The machine and its domain.
AccountSource& platformAccounts();

} // namespace lornix
