#include "lornix/accounts/name_lookup.h"

#include "lornix/faults.h"

#include <windows.h>

#include <lm.h>
#include <ntsecapi.h>

#include <algorithm>
#include <optional>
#include <span>

namespace lornix {
namespace {

constexpr NTSTATUS kNotThere = static_cast<NTSTATUS>(0xC0000002);
constexpr NTSTATUS kNoneMapped = static_cast<NTSTATUS>(0xC0000073); // an answer too

template <class Record>
using LsaAnswer = Owned<Record*, LsaFreeMemory>;

// The platform only reads texts and identifiers, and takes them as what may be written.
LSA_UNICODE_STRING lsaText(const wchar_t* text)
{
    constexpr std::size_t kMost = 0x7FFE;
    const auto bytes = static_cast<USHORT>(std::min(std::wcslen(text), kMost) * sizeof(wchar_t));
    return {bytes, bytes, const_cast<wchar_t*>(text)};
}

std::wstring textOf(const LSA_UNICODE_STRING& text)
{
    return text.Buffer == nullptr ? std::wstring() : std::wstring(text.Buffer, text.Length / sizeof(wchar_t));
}

/// A machine's own list of accounts, and the way to the domains that it trusts; null when it does not answer.
Owned<LSA_HANDLE, LsaClose> openPolicy(const wchar_t* server, ACCESS_MASK access)
{
    LSA_OBJECT_ATTRIBUTES attributes{};
    LSA_UNICODE_STRING name = lsaText(server == nullptr ? L"" : server);
    LSA_HANDLE policy = nullptr;
    const NTSTATUS status = ifThere(kNotThere, [&] {
        return LsaOpenPolicy(server == nullptr ? nullptr : &name, &attributes, access, &policy);
    });
    return Owned<LSA_HANDLE, LsaClose>(status >= 0 ? policy : nullptr);
}

/// @param call  a look-up, which gives a status.
/// @return whether there is an answer to look at.
template <class Record, class Call>
bool isAnswered(const LsaAnswer<Record>& records, Call call)
{
    const NTSTATUS status = ifThere(kNotThere, call);
    return status == kNoneMapped || (status >= 0 && records != nullptr);
}

/// A name with the domain in front, where there is one: well-known accounts such as Everyone belong to none.
std::wstring withDomain(const std::wstring& domain, const std::wstring& name)
{
    return domain.empty() ? name : domain + L'\\' + name;
}

/// Whether what a name was found to be is an account.
bool isAccountUse(int use)
{
    return use != SidTypeDomain && use != SidTypeInvalid && use != SidTypeUnknown && use != SidTypeComputer;
}

std::wstring lookUpName(const std::string& sid)
{
    wchar_t name[UNLEN + 1];
    wchar_t domain[256];
    DWORD nameLength = static_cast<DWORD>(std::size(name));
    DWORD domainLength = static_cast<DWORD>(std::size(domain));
    SID_NAME_USE use{};
    const bool isKnown = LookupAccountSidW(nullptr, const_cast<char*>(sid.data()), name, &nameLength, domain,
                                           &domainLength, &use);
    return isKnown ? withDomain(domain, name) : std::wstring();
}

/// @return nothing when the platform does not answer so many at once.
std::optional<std::vector<std::wstring>> lookUpTogether(const std::vector<std::string>& sids)
{
    const auto policy = openPolicy(nullptr, POLICY_LOOKUP_NAMES);
    std::vector<PSID> pointers;
    pointers.reserve(sids.size());
    for (const std::string& sid : sids) {
        pointers.push_back(const_cast<char*>(sid.data()));
    }
    LsaAnswer<LSA_REFERENCED_DOMAIN_LIST> domains;
    LsaAnswer<LSA_TRANSLATED_NAME> records;
    if (policy == nullptr || !isAnswered(records, [&] {
            return LsaLookupSids(policy.get(), static_cast<ULONG>(pointers.size()), pointers.data(),
                                 domains.put(), records.put());
        }))
    {
        return std::nullopt;
    }
    std::vector<std::wstring> names(sids.size());
    for (std::size_t i = 0; records != nullptr && i < names.size(); ++i) {
        const LSA_TRANSLATED_NAME& record = records.get()[i];
        if (record.Use == SidTypeUnknown || record.Use == SidTypeInvalid) {
            continue; // what is given as a name then is the identifier
        }
        const bool hasDomain = domains != nullptr && record.DomainIndex >= 0 &&
                               static_cast<ULONG>(record.DomainIndex) < domains->Entries;
        names[i] = withDomain(hasDomain ? textOf(domains->Domains[record.DomainIndex].Name) : std::wstring(),
                              textOf(record.Name));
    }
    return names;
}

/// @return false when the platform does not answer so many at once; nothing was added then.
bool addTogether(LSA_HANDLE policy, std::span<const std::wstring> names, SidSink& sink)
{
    std::vector<LSA_UNICODE_STRING> texts;
    for (const std::wstring& name : names) {
        texts.push_back(lsaText(name.c_str()));
    }
    LsaAnswer<LSA_REFERENCED_DOMAIN_LIST> domains;
    LsaAnswer<LSA_TRANSLATED_SID2> records;
    if (policy == nullptr || !isAnswered(records, [&] {
            return LsaLookupNames2(policy, 0, static_cast<ULONG>(texts.size()), texts.data(), domains.put(),
                                   records.put());
        }))
    {
        return false;
    }
    for (std::size_t i = 0; records != nullptr && i < texts.size(); ++i) {
        if (const LSA_TRANSLATED_SID2& record = records.get()[i]; isAccountUse(record.Use)) {
            sink.add(record.Sid);
        }
    }
    return true;
}

} // namespace

std::vector<std::wstring> lookUpNames(const std::vector<std::string>& sids)
{
    auto names = sids.size() > 1 ? lookUpTogether(sids) : std::nullopt;
    return names ? std::move(*names) : std::vector{lookUpName(sids.front())};
}

SidBlock lookUpSid(const wchar_t* server, const std::wstring& name)
{
    // Room for the longest of both, so that one question does.
    alignas(SID) BYTE sid[SECURITY_MAX_SID_SIZE];
    DWORD sidSize = sizeof sid;
    wchar_t domain[DNLEN + 256];
    DWORD domainLength = static_cast<DWORD>(std::size(domain));
    SID_NAME_USE use{};
    const bool isKnown =
        !name.empty() &&
        LookupAccountNameW(server, name.c_str(), sid, &sidSize, domain, &domainLength, &use) &&
        isAccountUse(use);
    return SidBlock(isKnown ? sidDup(sid) : nullptr);
}

void lookUpSids(const wchar_t* server, const std::vector<std::wstring>& names, SidSink& sink)
{
    constexpr std::size_t kMost = 1000; // that the platform takes at once
    auto policy = openPolicy(server, POLICY_LOOKUP_NAMES);
    for (std::size_t first = 0; first < names.size(); first += kMost) {
        const auto part = std::span(names).subspan(first, std::min(kMost, names.size() - first));
        if (!addTogether(policy.get(), part, sink)) {
            policy.reset(); // nor will it answer more of them
            for (const std::wstring& name : part) {
                sink.adopt(lookUpSid(server, name));
            }
        }
    }
}

SidBlock primaryDomainSid()
{
    const auto policy = openPolicy(nullptr, POLICY_VIEW_LOCAL_INFORMATION);
    LsaAnswer<void> answer;
    if (policy == nullptr ||
        LsaQueryInformationPolicy(policy.get(), PolicyPrimaryDomainInformation, answer.put()) != 0)
    {
        return {};
    }
    const auto* info = static_cast<const POLICY_PRIMARY_DOMAIN_INFO*>(answer.get());
    return SidBlock(info == nullptr ? nullptr : sidDup(info->Sid));
}

} // namespace lornix
