// The accounts that a file lists, for machines without a domain.
#pragma once

#include "lornix/text/framed_text.h"
#include "lornix/text/sid_text.h"

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lornix {

enum class AccountKind : std::uint8_t { kUser, kGroup };

/// Users, groups, their members, domains and servers as the lines of a file say:
///
///     domain NAME SID      a domain
///     server NAME          a server of the domain above
///     user SID NAME        NAME is DOMAIN\name, or a name alone
///     group SID NAME
///     member NAME          of the group above: the name or the SID of an account of this file
///
/// An account belongs to the servers of its domain. Where its domain has no server here, or it has no domain, it
/// belongs to this machine. A line that cannot be used is left out and noted. Case does not count in names.
class AccountDirectory : public Finding {
public:
    AccountDirectory() { condition = Condition::kForeign; }

    /// @param text  need not outlive the directory.
    explicit AccountDirectory(std::string_view text);
    AccountDirectory(const AccountDirectory&) = delete;
    AccountDirectory& operator=(const AccountDirectory&) = delete;

    /// A domain that has a server.
    struct Domain {
        std::u16string name;
        Sid sid;
        std::u16string server; ///< the first one
    };
    struct Account {
        Sid sid;
        std::u16string name; ///< DOMAIN\name, or a name alone
        AccountKind kind;
        std::uint32_t place;            ///< in the file, among all accounts
        const Domain* domain = nullptr; ///< null when it belongs to this machine
    };
    using Accounts = std::vector<const Account*>;

    std::size_t size() const { return m_accounts.size(); }

    /// @return null when there is no such account.
    const Account* find(std::span<const std::uint8_t> sid) const;

    /// @param name  with or without its domain; without, the account that stands first has it.
    const Account* find(std::u16string_view name) const;

    /// @return null when there is none.
    const Domain* firstDomain() const { return m_domains.empty() ? nullptr : m_domains.data(); }

    /// @return null for a server that does not stand in the file. Backslashes before its name do not count.
    const Domain* domainOf(std::u16string_view server) const;

    /// @return the domain that stands next behind that of a server; null when there is none.
    const Domain* domainBehind(std::u16string_view server) const;

    /// The accounts of one kind that belong to a server, in the order of the file.
    /// @param server  empty for this machine.
    Accounts accountsOf(std::u16string_view server, AccountKind kind) const;

    /// The users in a group, each once, in the order of the file; for groups among its members their users.
    Accounts usersOfGroup(std::u16string_view group) const;

private:
    /// Found after the accounts, which may stand below.
    struct MemberLine {
        std::size_t line;
        const Account* group;
        std::string_view member;
    };

    const char* readDomain(std::string_view line, Domain& open) const;
    const char* readServer(std::string_view line, Domain& open);
    const char* readAccount(std::string_view line, AccountKind kind);
    void resolveDomains();
    void resolveMembers(const std::vector<MemberLine>& lines);

    std::vector<Domain> m_domains;
    std::deque<Account> m_accounts;                                   ///< none of them moves
    std::unordered_map<std::string_view, const Account*> m_bySid;     ///< by the bytes in m_accounts
    std::unordered_map<std::u16string, const Account*> m_byName;      ///< small letters, as the file has them
    std::unordered_map<std::u16string, const Account*> m_byShortName; ///< small letters, without domains
    std::unordered_map<std::u16string, std::size_t> m_domainByServer;
    std::unordered_map<const Account*, Accounts> m_members;
};

} // namespace lornix
