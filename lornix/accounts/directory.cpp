#include "lornix/accounts/directory.h"

#include "lornix/sid.h"
#include "lornix/text/escaped_text.h"
#include "lornix/text/lower_case.h"

#include <algorithm>
#include <optional>

namespace lornix {
namespace {

constexpr FileKind kAccounts{"accounts", 1};

std::u16string folded(std::u16string_view name)
{
    std::u16string key(name);
    std::transform(key.begin(), key.end(), key.begin(), lowerCase);
    return key;
}

std::u16string_view domainPart(std::u16string_view name)
{
    const std::size_t slash = name.find(u'\\');
    return slash == std::u16string_view::npos ? std::u16string_view() : name.substr(0, slash);
}

std::u16string_view shortPart(std::u16string_view name)
{
    return name.substr(name.find(u'\\') + 1);
}

/// A server as its key: callers put two backslashes in front or leave them out.
std::u16string serverKey(std::u16string_view server)
{
    const std::size_t first = server.find_first_not_of(u'\\');
    return folded(first == std::u16string_view::npos ? std::u16string_view() : server.substr(first));
}

std::optional<std::u16string> readText(std::string_view bytes)
{
    auto text = unescape(bytes);
    if (!text || text->empty() || text->find(u'\0') != std::u16string::npos) {
        return std::nullopt;
    }
    return text;
}

/// @return null when a table of pointers has none under a key.
template <class Table, class Key>
typename Table::mapped_type found(const Table& table, const Key& key)
{
    const auto place = table.find(key);
    return place == table.end() ? nullptr : place->second;
}

} // namespace

AccountDirectory::AccountDirectory(std::string_view text)
    : AccountDirectory()
{
    TextReader reader(text, kAccounts);
    if (!reader.isOurs()) {
        return;
    }
    std::vector<MemberLine> memberLines;
    Domain domain; // the one above, without a name where there is none
    const Account* group = nullptr;
    for (std::string_view line; reader.next(line);) {
        const std::string_view word = takeWord(line);
        const char* flaw = nullptr;
        if (word == "member") {
            if (group == nullptr) {
                flaw = "it stands under no group";
            } else {
                memberLines.push_back({reader.lineNumber(), group, line});
            }
        } else {
            flaw = word == "user"     ? readAccount(line, AccountKind::kUser)
                   : word == "group"  ? readAccount(line, AccountKind::kGroup)
                   : word == "domain" ? readDomain(line, domain)
                   : word == "server" ? readServer(line, domain)
                                      : "its first word is none that is known here";
            group = word == "group" && flaw == nullptr ? &m_accounts.back() : nullptr;
        }
        if (flaw != nullptr) {
            reader.reject(flaw);
        }
    }
    flaws = reader.finding().flaws;
    resolveDomains();
    resolveMembers(memberLines);
    std::ranges::sort(flaws.first, {}, &Flaw::line);
    condition = flaws.count == 0 ? Condition::kGood : Condition::kDamaged;
}

const char* AccountDirectory::readDomain(std::string_view line, Domain& open) const
{
    const auto name = readText(takeWord(line));
    const auto sid = parseSid(line);
    const bool isGood = name && name->find(u'\\') == std::u16string::npos && sid;
    open = isGood ? Domain{*name, *sid, {}} : Domain{};
    return isGood ? nullptr : "a name and a SID are expected";
}

const char* AccountDirectory::readServer(std::string_view line, Domain& open)
{
    const auto name = readText(line);
    if (open.name.empty()) {
        return "it stands under no domain";
    }
    if (!name || serverKey(*name).empty()) {
        return "the name of a server is expected";
    }
    const bool isFirst = open.server.empty();
    if (!m_domainByServer.emplace(serverKey(*name), m_domains.size() - (isFirst ? 0 : 1)).second) {
        return "the server stands above already";
    }
    if (isFirst) {
        // Without the backslashes, which whoever needs them puts in front.
        open.server = name->substr(name->find_first_not_of(u'\\'));
        m_domains.push_back(open);
    }
    return nullptr;
}

const char* AccountDirectory::readAccount(std::string_view line, AccountKind kind)
{
    const auto sid = parseSid(takeWord(line));
    if (!sid) {
        return "the second word is no SID";
    }
    auto name = readText(line);
    if (!name || shortPart(*name).empty() || name->front() == u'\\') {
        return "the name of an account is expected behind the SID";
    }
    std::u16string key = folded(*name);
    if (m_bySid.contains(sidKey(sid->bytes()))) {
        return "the SID stands above already";
    }
    if (m_byName.contains(key)) {
        return "the name stands above already";
    }
    const auto place = static_cast<std::uint32_t>(m_accounts.size());
    const Account& account = m_accounts.emplace_back(Account{*sid, std::move(*name), kind, place});
    m_bySid.emplace(sidKey(account.sid.bytes()), &account);
    m_byShortName.emplace(shortPart(key), &account);
    m_byName.emplace(std::move(key), &account);
    return nullptr;
}

void AccountDirectory::resolveDomains()
{
    std::unordered_map<std::u16string, const Domain*> byName;
    for (const Domain& domain : m_domains) {
        byName.emplace(folded(domain.name), &domain);
    }
    for (Account& account : m_accounts) {
        account.domain = found(byName, folded(domainPart(account.name)));
    }
}

void AccountDirectory::resolveMembers(const std::vector<MemberLine>& lines)
{
    for (const MemberLine& each : lines) {
        const Account* member = nullptr;
        if (const auto sid = parseSid(each.member)) {
            member = find(sid->bytes());
        } else if (const auto name = readText(each.member)) {
            member = find(*name);
        }
        if (member == nullptr) {
            flaws.add(each.line, "the member is no account of this file");
        } else {
            m_members[each.group].push_back(member);
        }
    }
}

const AccountDirectory::Account* AccountDirectory::find(std::span<const std::uint8_t> sid) const
{
    return found(m_bySid, sidKey(sid));
}

const AccountDirectory::Account* AccountDirectory::find(std::u16string_view name) const
{
    const std::u16string key = folded(name);
    const Account* const whole = found(m_byName, key);
    return whole != nullptr ? whole : found(m_byShortName, key);
}

const AccountDirectory::Domain* AccountDirectory::domainOf(std::u16string_view server) const
{
    const auto place = m_domainByServer.find(serverKey(server));
    return place == m_domainByServer.end() ? nullptr : &m_domains[place->second];
}

const AccountDirectory::Domain* AccountDirectory::domainBehind(std::u16string_view server) const
{
    const Domain* const domain = domainOf(server);
    return domain == nullptr || domain == &m_domains.back() ? nullptr : domain + 1;
}

AccountDirectory::Accounts AccountDirectory::accountsOf(std::u16string_view server, AccountKind kind) const
{
    Accounts accounts;
    const Domain* const domain = domainOf(server);
    if (domain == nullptr && !server.empty()) {
        return accounts;
    }
    for (const Account& account : m_accounts) {
        if (account.domain == domain && account.kind == kind) {
            accounts.push_back(&account);
        }
    }
    return accounts;
}

AccountDirectory::Accounts AccountDirectory::usersOfGroup(std::u16string_view group) const
{
    Accounts users;
    const Account* const start = find(group);
    if (start == nullptr || start->kind != AccountKind::kGroup) {
        return users;
    }
    // Groups may hold each other in a ring.
    std::vector<bool> seen(m_accounts.size());
    seen[start->place] = true;
    for (Accounts open{start}; !open.empty();) {
        const auto members = m_members.find(open.back());
        open.pop_back();
        if (members == m_members.end()) {
            continue;
        }
        for (const Account* member : members->second) {
            if (!seen[member->place]) {
                seen[member->place] = true;
                (member->kind == AccountKind::kGroup ? open : users).push_back(member);
            }
        }
    }
    std::ranges::sort(users, {}, &Account::place);
    return users;
}

} // namespace lornix
