// The accounts that a file lists, for machines without a domain.
#pragma once

#include "lornix/text/framed_text.h"
#include "lornix/text/sid_text.h"

#include <cstdint>
#include <deque>
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

    std::size_t size() const { return m_accounts.size(); }

    /// @return DOMAIN\name, null when there is no account with that SID.
    const std::u16string* nameOf(std::span<const std::uint8_t> sid) const;

    /// @param name  with or without its domain; without, the account that stands first has it.
    /// @return null when there is none.
    const Sid* sidOf(std::u16string_view name) const;

    /// Whether a server stands in the file. Backslashes before its name do not count.
    bool hasServer(std::u16string_view server) const;

    /// The accounts of one kind that belong to a server, in the order of the file.
    /// @param server  empty for this machine.
    std::vector<Sid> accountsOf(std::u16string_view server, AccountKind kind) const;

    /// The users in a group, each once, in the order of the file; for groups among its members their users.
    /// @return false when there is no such group.
    bool usersOfGroup(std::u16string_view group, std::vector<Sid>& users) const;

    /// @return the first server of the first domain that has one, null when none has.
    const std::u16string* firstServer() const;

    /// @return the first server of the next domain that has one behind the domain of a server; null when there
    ///         is none, or the server is none of the file's.
    const std::u16string* serverBehind(std::u16string_view server) const;

    /// @return the SID of the first domain that has a server, null when none has.
    const Sid* domainSid() const;

private:
    struct Domain {
        std::u16string name;
        Sid sid;
        std::vector<std::u16string> servers;
    };
    struct Account {
        Sid sid;
        std::u16string name;
        AccountKind kind;
        std::uint32_t domain; ///< kNone when it belongs to this machine
    };
    /// Found after the accounts, which may stand below.
    struct MemberLine {
        std::size_t line;
        std::uint32_t group;
        std::string_view member;
    };

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    const char* readDomain(std::string_view line);
    const char* readServer(std::string_view line);
    const char* readAccount(std::string_view line, AccountKind kind);
    void resolveDomains();
    void resolveMembers(const std::vector<MemberLine>& lines);
    std::uint32_t find(std::u16string_view name) const;
    std::uint32_t find(std::span<const std::uint8_t> sid) const;
    std::uint32_t domainOfServer(std::u16string_view server) const;
    std::uint32_t domainWithServerFrom(std::uint32_t first) const;

    std::vector<Domain> m_domains;
    std::deque<Account> m_accounts;                                  ///< none of them moves
    std::unordered_map<std::string_view, std::uint32_t> m_bySid;     ///< by the bytes in m_accounts
    std::unordered_map<std::u16string, std::uint32_t> m_byName;      ///< small letters, as the file has them
    std::unordered_map<std::u16string, std::uint32_t> m_byShortName; ///< small letters, without domains
    std::unordered_map<std::u16string, std::uint32_t> m_domainByServer;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_members;
};

} // namespace lornix
