// Accounts of the machine and its domain, as the platform's account functions tell them.
#include "lornix/accounts/lsa_lookup.h"
#include "lornix/accounts/source.h"
#include "lornix/faults.h"
#include "lornix/sid.h"
#include "store/owned.h"

#include <windows.h>

#include <dsgetdc.h>
#include <lm.h>

#include <cstdlib>
#include <cwchar>
#include <span>

namespace lornix {
namespace {

constexpr NET_API_STATUS kOtherRuntime = ERROR_CALL_NOT_IMPLEMENTED;

template <class Record>
using NetBuffer = Owned<Record*, NetApiBufferFree>;

/// Calls a function of the network library with where its answer goes.
/// @param call  takes LPBYTE*, gives a status.
template <class Record, class Call>
NET_API_STATUS ask(NetBuffer<Record>& answer, Call call)
{
    NET_API_STATUS status = kOtherRuntime;
    LPBYTE buffer = nullptr;
    isImplemented([&] { status = call(&buffer); });
    answer.reset(reinterpret_cast<Record*>(buffer));
    return status;
}

void tell(const wchar_t* what, const wchar_t* server, DWORD status)
{
    ODS("lornix: %ls of %ls cannot be listed: error %lu\n", what,
        server == nullptr ? L"this machine" : server, status);
}

/// A malloc block for an account by name, as one machine knows it.
/// @param server  null for this machine.
void* lookUp(const wchar_t* server, const std::wstring& name)
{
    // Room for the longest of both, so that one question does.
    alignas(SID) BYTE sid[SECURITY_MAX_SID_SIZE];
    DWORD sidSize = sizeof sid;
    wchar_t domain[DNLEN + 256];
    DWORD domainLength = static_cast<DWORD>(std::size(domain));
    SID_NAME_USE use{};
    if (name.empty() ||
        !LookupAccountNameW(server, name.c_str(), sid, &sidSize, domain, &domainLength, &use) ||
        !isAccountUse(use))
    {
        return nullptr;
    }
    return sidDup(sid);
}

/// Adds accounts by name, as one machine knows them.
void addNamed(const wchar_t* server, const std::vector<std::wstring>& names, SidSink& sink)
{
    if (auto sids = lookUpSids(server, names)) {
        for (SidBlock& sid : *sids) {
            sink.adopt(sid.release());
        }
        return;
    }
    for (const std::wstring& name : names) {
        sink.adopt(lookUp(server, name));
    }
}

/// An account of a domain, from the domain's identifier and its number in it.
void addAccount(PSID domain, DWORD number, SidSink& sink)
{
    const UCHAR count = *GetSidSubAuthorityCount(domain);
    if (count >= SID_MAX_SUB_AUTHORITIES) {
        return;
    }
    alignas(SID) BYTE sid[SECURITY_MAX_SID_SIZE];
    if (InitializeSid(sid, GetSidIdentifierAuthority(domain), static_cast<BYTE>(count + 1))) {
        for (UCHAR i = 0; i < count; ++i) {
            *GetSidSubAuthority(sid, i) = *GetSidSubAuthority(domain, i);
        }
        *GetSidSubAuthority(sid, count) = number;
        sink.add(sid);
    }
}

/// The identifier that the accounts of a server start with.
NetBuffer<USER_MODALS_INFO_2> accountDomain(const wchar_t* server, NET_API_STATUS& status)
{
    NetBuffer<USER_MODALS_INFO_2> modals;
    status = ask(modals, [&](LPBYTE* buffer) { return NetUserModalsGet(server, 2, buffer); });
    if (status == NERR_Success && (modals == nullptr || !isSid(modals->usrmod2_domain_id))) {
        status = NERR_InternalError;
    }
    return modals;
}

/// Lists one kind of display records, page by page.
/// @param level   1 for users, 3 for groups.
/// @param number  gives the account number of a record.
/// @param index   gives where the page behind a record starts.
template <class Record>
void addDisplayed(const wchar_t* what, const wchar_t* server, DWORD level, DWORD Record::* number,
                  DWORD Record::* index, SidSink& sink)
{
    NET_API_STATUS status = NERR_Success;
    const auto domain = accountDomain(server, status);
    DWORD start = 0;
    while (status == NERR_Success || status == ERROR_MORE_DATA) {
        constexpr DWORD kPage = 1000;
        constexpr DWORD kPageBytes = 1 << 18;
        DWORD count = 0;
        NetBuffer<Record> page;
        status = ask(page, [&](LPBYTE* buffer) {
            return NetQueryDisplayInformation(server, level, start, kPage, kPageBytes, &count,
                                              reinterpret_cast<PVOID*>(buffer));
        });
        if ((status != NERR_Success && status != ERROR_MORE_DATA) || page == nullptr || count == 0) {
            break;
        }
        for (const Record* record = page.get(); record != page.get() + count; ++record) {
            addAccount(domain->usrmod2_domain_id, record->*number, sink);
            start = record->*index;
        }
        if (status == NERR_Success) {
            return;
        }
    }
    if (status != NERR_Success) {
        tell(what, server, status);
    }
}

/// Goes through the pages of an answer that goes on with a resume handle.
/// @param call  takes LPBYTE*, DWORD* read, DWORD* total, DWORD_PTR* resume; gives a status.
/// @param use   takes the records of a page.
template <class Record, class Call, class Use>
NET_API_STATUS forPages(Call call, Use use)
{
    DWORD_PTR resume = 0;
    NET_API_STATUS status = ERROR_MORE_DATA;
    while (status == ERROR_MORE_DATA) {
        DWORD count = 0;
        DWORD total = 0;
        NetBuffer<Record> page;
        status = ask(page, [&](LPBYTE* buffer) { return call(buffer, &count, &total, &resume); });
        if ((status != NERR_Success && status != ERROR_MORE_DATA) || page == nullptr || count == 0) {
            break; // a page without anything would otherwise be asked for again and again
        }
        use(std::span<const Record>(page.get(), count));
    }
    return status;
}

template <class Record>
std::vector<std::wstring> namesIn(std::span<const Record> records, wchar_t* Record::* name)
{
    std::vector<std::wstring> names;
    for (const Record& record : records) {
        names.emplace_back(record.*name == nullptr ? L"" : record.*name);
    }
    return names;
}

std::wstring withoutBackslashes(const wchar_t* server)
{
    return server + std::wcsspn(server, L"\\");
}

class PlatformAccounts final : public AccountSource {
public:
    void addUsers(const wchar_t* server, SidSink& sink) override
    {
        addDisplayed<NET_DISPLAY_USER>(L"the users", server, 1, &NET_DISPLAY_USER::usri1_user_id,
                                       &NET_DISPLAY_USER::usri1_next_index, sink);
    }

    void addGroups(const wchar_t* server, SidSink& sink) override
    {
        addDisplayed<NET_DISPLAY_GROUP>(L"the global groups", server, 3, &NET_DISPLAY_GROUP::grpi3_group_id,
                                        &NET_DISPLAY_GROUP::grpi3_next_index, sink);
        const NET_API_STATUS status = forPages<LOCALGROUP_INFO_0>(
            [&](LPBYTE* buffer, DWORD* count, DWORD* total, DWORD_PTR* resume) {
                return NetLocalGroupEnum(server, 0, buffer, kPageBytes, count, total, resume);
            },
            [&](auto groups) { addNamed(server, namesIn(groups, &LOCALGROUP_INFO_0::lgrpi0_name), sink); });
        if (status != NERR_Success) {
            tell(L"the local groups", server, status);
        }
    }

    void addMembers(const wchar_t* server, const std::wstring& group, SidSink& sink) override
    {
        const std::size_t slash = group.find(L'\\');
        const std::wstring name = slash == std::wstring::npos ? group : group.substr(slash + 1);
        if (slash != std::wstring::npos && isSomeoneElse(server, group, name)) {
            return;
        }
        const NET_API_STATUS local = forPages<LOCALGROUP_MEMBERS_INFO_0>(
            [&](LPBYTE* buffer, DWORD* count, DWORD* total, DWORD_PTR* resume) {
                return NetLocalGroupGetMembers(server, name.c_str(), 0, buffer, kPageBytes, count, total,
                                               resume);
            },
            [&](auto members) {
                for (const LOCALGROUP_MEMBERS_INFO_0& member : members) {
                    sink.add(member.lgrmi0_sid);
                }
            });
        const NET_API_STATUS global = forPages<GROUP_USERS_INFO_0>(
            [&](LPBYTE* buffer, DWORD* count, DWORD* total, DWORD_PTR* resume) {
                return NetGroupGetUsers(server, name.c_str(), 0, buffer, kPageBytes, count, total, resume);
            },
            [&](auto members) { addNamed(server, namesIn(members, &GROUP_USERS_INFO_0::grui0_name), sink); });
        // A group is of one kind: that the other does not know it is no failure.
        const auto isUnknown = [](NET_API_STATUS status) {
            return status == NERR_GroupNotFound || status == ERROR_NO_SUCH_ALIAS ||
                   status == ERROR_NO_SUCH_GROUP;
        };
        const std::wstring what = L"the members of \"" + group + L'"';
        if (local != NERR_Success && !isUnknown(local)) {
            tell(what.c_str(), server, local);
        }
        if (global != NERR_Success && !isUnknown(global)) {
            tell(what.c_str(), server, global);
        }
    }

    std::wstring nameOf(const void* sid) override
    {
        wchar_t name[UNLEN + 1];
        wchar_t domain[256];
        DWORD nameLength = static_cast<DWORD>(std::size(name));
        DWORD domainLength = static_cast<DWORD>(std::size(domain));
        SID_NAME_USE use{};
        if (!LookupAccountSidW(nullptr, const_cast<void*>(sid), name, &nameLength, domain, &domainLength,
                               &use))
        {
            return {};
        }
        return withDomain(domain, name);
    }

    std::vector<std::wstring> namesOf(const std::vector<std::string>& sids) override
    {
        if (sids.size() > 1) {
            if (auto names = lookUpNames(sids)) {
                return std::move(*names);
            }
        }
        return AccountSource::namesOf(sids);
    }

    void* sidOf(const std::wstring& name) override { return lookUp(nullptr, name); }

    std::wstring domainServer() override
    {
        PDOMAIN_CONTROLLER_INFOW found = nullptr;
        DWORD status = kOtherRuntime;
        isImplemented(
            [&] { status = DsGetDcNameW(nullptr, nullptr, nullptr, nullptr, DS_RETURN_FLAT_NAME, &found); });
        const NetBuffer<DOMAIN_CONTROLLER_INFOW> info(found);
        if (status != ERROR_SUCCESS || info == nullptr || info->DomainControllerName == nullptr) {
            return {};
        }
        return withoutBackslashes(info->DomainControllerName);
    }

    std::wstring secondServer(const std::wstring& server) override
    {
        // The server that all changes of the domain go through knows what has not reached the nearest one yet.
        NetBuffer<wchar_t> name;
        const NET_API_STATUS status =
            ask(name, [&](LPBYTE* buffer) { return NetGetDCName(server.c_str(), nullptr, buffer); });
        if (status != NERR_Success || name == nullptr) {
            return {};
        }
        const std::wstring second = withoutBackslashes(name.get());
        return _wcsicmp(second.c_str(), withoutBackslashes(server.c_str()).c_str()) == 0 ? std::wstring()
                                                                                         : second;
    }

    void* domainSid() override { return primaryDomainSid().release(); }

private:
    static constexpr DWORD kPageBytes = 1 << 16;

    /// Whether the server knows another account by the bare name than the one that is meant: the members of a
    /// machine's own group must not be taken for those of a domain's.
    static bool isSomeoneElse(const wchar_t* server, const std::wstring& meant, const std::wstring& bare)
    {
        const CBlock<void> wanted(lookUp(server, meant));
        const CBlock<void> there(lookUp(server, bare));
        return there != nullptr && sidcmp(wanted.get(), there.get()) != 0;
    }
};

} // namespace

AccountSource& platformAccounts()
{
    static PlatformAccounts accounts;
    return accounts;
}

} // namespace lornix
