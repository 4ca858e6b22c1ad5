#include "lornix/accounts/lsa_lookup.h"

#include "lornix/faults.h"
#include "store/lornix.h"

#include <windows.h>

#include <ntsecapi.h>

#include <algorithm>
#include <cwchar>

namespace lornix {
namespace {

constexpr NTSTATUS kNoneMapped = static_cast<NTSTATUS>(0xC0000073); // an answer too

/// A machine's own list of accounts, and the way to the domains that it trusts.
class Policy {
public:
    Policy(const wchar_t* server, ACCESS_MASK access)
    {
        LSA_OBJECT_ATTRIBUTES attributes{};
        std::wstring name = server == nullptr ? L"" : server;
        LSA_UNICODE_STRING text = lsaText(name);
        isImplemented([&] {
            LSA_HANDLE handle = nullptr;
            if (LsaOpenPolicy(server == nullptr ? nullptr : &text, &attributes, access, &handle) >= 0) {
                m_handle.reset(handle);
            }
        });
    }

    bool isOpen() const { return m_handle != nullptr; }
    LSA_HANDLE get() const { return m_handle.get(); }

    static LSA_UNICODE_STRING lsaText(std::wstring& text)
    {
        constexpr std::size_t kMost = 0x7FFE;
        const auto bytes = static_cast<USHORT>(std::min(text.size(), kMost) * sizeof(wchar_t));
        return {bytes, bytes, text.data()};
    }

private:
    Owned<LSA_HANDLE, LsaClose> m_handle;
};

template <class Record>
using Answer = Owned<Record*, LsaFreeMemory>;

/// Calls a look-up with where its two answers go.
/// @param call  takes LSA_REFERENCED_DOMAIN_LIST** and Record**, gives a status.
template <class Record, class Call>
bool ask(Answer<LSA_REFERENCED_DOMAIN_LIST>& domains, Answer<Record>& records, Call call)
{
    NTSTATUS status = -1;
    LSA_REFERENCED_DOMAIN_LIST* domainList = nullptr;
    Record* recordList = nullptr;
    isImplemented([&] { status = call(&domainList, &recordList); });
    domains.reset(domainList);
    records.reset(recordList);
    return status == kNoneMapped || (status >= 0 && records != nullptr);
}

std::wstring textOf(const LSA_UNICODE_STRING& text)
{
    return text.Buffer == nullptr ? std::wstring() : std::wstring(text.Buffer, text.Length / sizeof(wchar_t));
}

} // namespace

std::wstring withDomain(const std::wstring& domain, const std::wstring& name)
{
    return domain.empty() ? name : domain + L'\\' + name;
}

bool isAccountUse(int use)
{
    return use != SidTypeDomain && use != SidTypeInvalid && use != SidTypeUnknown && use != SidTypeComputer;
}

std::optional<std::vector<std::wstring>> lookUpNames(const std::vector<std::string>& sids)
{
    const Policy policy(nullptr, POLICY_LOOKUP_NAMES);
    std::vector<std::string> own = sids; // the platform takes them as what it may write to
    std::vector<PSID> pointers;
    pointers.reserve(own.size());
    for (std::string& sid : own) {
        pointers.push_back(sid.data());
    }
    Answer<LSA_REFERENCED_DOMAIN_LIST> domains;
    Answer<LSA_TRANSLATED_NAME> records;
    if (!policy.isOpen() || !ask(domains, records, [&](auto** domainList, auto** recordList) {
            return LsaLookupSids(policy.get(), static_cast<ULONG>(pointers.size()), pointers.data(),
                                 domainList, recordList);
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

std::optional<std::vector<SidBlock>> lookUpSids(const wchar_t* server, const std::vector<std::wstring>& names)
{
    constexpr std::size_t kMost = 1000; // that the platform takes at once
    const Policy policy(server, POLICY_LOOKUP_NAMES);
    std::vector<std::wstring> own = names;
    std::vector<SidBlock> sids;
    while (policy.isOpen() && sids.size() < own.size()) {
        const std::size_t first = sids.size();
        std::vector<LSA_UNICODE_STRING> texts;
        for (std::size_t i = first; i < std::min(first + kMost, own.size()); ++i) {
            texts.push_back(Policy::lsaText(own[i]));
        }
        Answer<LSA_REFERENCED_DOMAIN_LIST> domains;
        Answer<LSA_TRANSLATED_SID2> records;
        if (!ask(domains, records, [&](auto** domainList, auto** recordList) {
                return LsaLookupNames2(policy.get(), 0, static_cast<ULONG>(texts.size()), texts.data(),
                                       domainList, recordList);
            }))
        {
            return std::nullopt;
        }
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const LSA_TRANSLATED_SID2* record = records == nullptr ? nullptr : records.get() + i;
            const bool isFound = record != nullptr && isAccountUse(record->Use);
            sids.emplace_back(isFound ? sidDup(record->Sid) : nullptr);
        }
    }
    return sids.size() < own.size() ? std::nullopt : std::make_optional(std::move(sids));
}

SidBlock primaryDomainSid()
{
    const Policy policy(nullptr, POLICY_VIEW_LOCAL_INFORMATION);
    void* answer = nullptr;
    if (!policy.isOpen() ||
        LsaQueryInformationPolicy(policy.get(), PolicyPrimaryDomainInformation, &answer) != 0)
    {
        return {};
    }
    const Answer<POLICY_PRIMARY_DOMAIN_INFO> info(static_cast<POLICY_PRIMARY_DOMAIN_INFO*>(answer));
    return SidBlock(info == nullptr ? nullptr : sidDup(info->Sid));
}

} // namespace lornix
