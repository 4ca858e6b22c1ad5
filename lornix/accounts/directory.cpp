#include "lornix/accounts/directory.h"

#include "lornix/text/escaped_text.h"
#include "lornix/text/lower_case.h"

#include <algorithm>
#include <cstring>
#include <functional>

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

std::string_view asText(std::span<const std::uint8_t> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
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
    std::uint32_t group = kNone;
    for (std::string_view line; reader.next(line);) {
        const std::string_view word = takeWord(line);
        const char* flaw = nullptr;
        if (word == "user" || word == "group") {
            const AccountKind kind = word == "user" ? AccountKind::kUser : AccountKind::kGroup;
            flaw = readAccount(line, kind);
            const bool opened = flaw == nullptr && kind == AccountKind::kGroup;
            group = opened ? static_cast<std::uint32_t>(m_accounts.size() - 1) : kNone;
        } else if (word == "member") {
            if (group == kNone) {
                flaw = "it stands under no group";
            } else {
                memberLines.push_back({reader.lineNumber(), group, line});
            }
        } else {
            group = kNone;
            flaw = word == "domain"   ? readDomain(line)
                   : word == "server" ? readServer(line)
                                      : "its first word is none that is known here";
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

const char* AccountDirectory::readDomain(std::string_view line)
{
    const auto name = readText(takeWord(line));
    const auto sid = parseSid(line);
    if (!name || name->find(u'\\') != std::u16string::npos || !sid) {
        return "a name and a SID are expected";
    }
    m_domains.push_back({*name, *sid, {}});
    return nullptr;
}

const char* AccountDirectory::readServer(std::string_view line)
{
    const auto name = readText(line);
    if (m_domains.empty()) {
        return "it stands under no domain";
    }
    if (!name || serverKey(*name).empty()) {
        return "the name of a server is expected";
    }
    if (!m_domainByServer.emplace(serverKey(*name), static_cast<std::uint32_t>(m_domains.size() - 1)).second)
    {
        return "the server stands above already";
    }
    // Without the backslashes, which whoever needs them puts in front.
    m_domains.back().servers.push_back(name->substr(name->find_first_not_of(u'\\')));
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
    if (m_bySid.contains(asText(sid->bytes()))) {
        return "the SID stands above already";
    }
    if (m_byName.contains(key)) {
        return "the name stands above already";
    }
    const auto index = static_cast<std::uint32_t>(m_accounts.size());
    const Account& account = m_accounts.emplace_back(Account{*sid, std::move(*name), kind, kNone});
    m_bySid.emplace(asText(account.sid.bytes()), index);
    m_byShortName.emplace(shortPart(key), index);
    m_byName.emplace(std::move(key), index);
    return nullptr;
}

void AccountDirectory::resolveDomains()
{
    std::unordered_map<std::u16string, std::uint32_t> withServer;
    for (std::uint32_t i = 0; i < m_domains.size(); ++i) {
        if (!m_domains[i].servers.empty()) {
            withServer.emplace(folded(m_domains[i].name), i);
        }
    }
    for (Account& account : m_accounts) {
        const auto found = withServer.find(folded(domainPart(account.name)));
        account.domain = found == withServer.end() ? kNone : found->second;
    }
}

void AccountDirectory::resolveMembers(const std::vector<MemberLine>& lines)
{
    for (const MemberLine& each : lines) {
        std::uint32_t member = kNone;
        if (const auto sid = parseSid(each.member)) {
            member = find(sid->bytes());
        } else if (const auto name = readText(each.member)) {
            member = find(*name);
        }
        if (member == kNone) {
            flaws.add(each.line, "the member is no account of this file");
        } else {
            m_members[each.group].push_back(member);
        }
    }
}

std::uint32_t AccountDirectory::find(std::span<const std::uint8_t> sid) const
{
    const auto found = m_bySid.find(asText(sid));
    return found == m_bySid.end() ? kNone : found->second;
}

std::uint32_t AccountDirectory::find(std::u16string_view name) const
{
    const std::u16string key = folded(name);
    if (const auto found = m_byName.find(key); found != m_byName.end()) {
        return found->second;
    }
    const auto found = m_byShortName.find(key);
    return found == m_byShortName.end() ? kNone : found->second;
}

std::uint32_t AccountDirectory::domainOfServer(std::u16string_view server) const
{
    const auto found = m_domainByServer.find(serverKey(server));
    return found == m_domainByServer.end() ? kNone : found->second;
}

std::uint32_t AccountDirectory::domainWithServerFrom(std::uint32_t first) const
{
    for (std::uint32_t i = first; i < m_domains.size(); ++i) {
        if (!m_domains[i].servers.empty()) {
            return i;
        }
    }
    return kNone;
}

const std::u16string* AccountDirectory::nameOf(std::span<const std::uint8_t> sid) const
{
    const std::uint32_t index = find(sid);
    return index == kNone ? nullptr : &m_accounts[index].name;
}

const Sid* AccountDirectory::sidOf(std::u16string_view name) const
{
    const std::uint32_t index = find(name);
    return index == kNone ? nullptr : &m_accounts[index].sid;
}

bool AccountDirectory::hasServer(std::u16string_view server) const
{
    return domainOfServer(server) != kNone;
}

std::vector<Sid> AccountDirectory::accountsOf(std::u16string_view server, AccountKind kind) const
{
    std::vector<Sid> sids;
    const std::uint32_t domain = domainOfServer(server);
    if (domain == kNone && !server.empty()) {
        return sids;
    }
    for (const Account& account : m_accounts) {
        if (account.domain == domain && account.kind == kind) {
            sids.push_back(account.sid);
        }
    }
    return sids;
}

bool AccountDirectory::usersOfGroup(std::u16string_view group, std::vector<Sid>& users) const
{
    const std::uint32_t start = find(group);
    if (start == kNone || m_accounts[start].kind != AccountKind::kGroup) {
        return false;
    }
    // Groups may hold each other in a ring.
    std::vector<bool> seen(m_accounts.size());
    std::vector<std::uint32_t> open{start};
    std::vector<std::uint32_t> found;
    seen[start] = true;
    while (!open.empty()) {
        const std::uint32_t current = open.back();
        open.pop_back();
        const auto list = m_members.find(current);
        if (list == m_members.end()) {
            continue;
        }
        for (const std::uint32_t member : list->second) {
            if (seen[member]) {
                continue;
            }
            seen[member] = true;
            (m_accounts[member].kind == AccountKind::kGroup ? open : found).push_back(member);
        }
    }
    std::sort(found.begin(), found.end());
    for (const std::uint32_t member : found) {
        users.push_back(m_accounts[member].sid);
    }
    return true;
}

const std::u16string* AccountDirectory::firstServer() const
{
    const std::uint32_t domain = domainWithServerFrom(0);
    return domain == kNone ? nullptr : &m_domains[domain].servers.front();
}

const std::u16string* AccountDirectory::serverBehind(std::u16string_view server) const
{
    const std::uint32_t domain = domainOfServer(server);
    const std::uint32_t next = domain == kNone ? kNone : domainWithServerFrom(domain + 1);
    return next == kNone ? nullptr : &m_domains[next].servers.front();
}

const Sid* AccountDirectory::domainSid() const
{
    const std::uint32_t domain = domainWithServerFrom(0);
    return domain == kNone ? nullptr : &m_domains[domain].sid;
}

} // namespace lornix
