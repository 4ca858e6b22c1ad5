// Who knows accounts. The exports ask here; behind it stands the platform, and another source may stand beside it.
#pragma once

#include "store/lornix.h"

#include <string>
#include <vector>

namespace lornix {

/// Collects identifiers for a list of the border.
class SidSink {
public:
    /// @param list  to grow, or null.
    explicit SidSink(SidList* list)
        : list_(list)
    {
    }

    /// Copies a valid identifier; others are left out.
    void add(const void* sid) { adopt(sidDup(sid)); }

    /// Takes over a malloc block; null is left out.
    void adopt(void* sid)
    {
        if (sid != nullptr) {
            list_ = appendToSidList(list_, sid);
        }
    }

    SidList* list() const { return list_; }

private:
    SidList* list_;
};

/// A source of accounts. A server of null is this machine.
class AccountSource {
public:
    AccountSource() = default;
    AccountSource(const AccountSource&) = delete;
    AccountSource& operator=(const AccountSource&) = delete;
    virtual ~AccountSource() = default;

    virtual void addUsers(const wchar_t* server, SidSink& sink) = 0;
    virtual void addGroups(const wchar_t* server, SidSink& sink) = 0;
    virtual void addMembers(const wchar_t* server, const std::wstring& group, SidSink& sink) = 0;

    /// DOMAIN\name, or empty when the source does not know the account.
    virtual std::wstring nameOf(const void* sid) = 0;

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

/// The machine and its domain.
AccountSource& platformAccounts();

} // namespace lornix
