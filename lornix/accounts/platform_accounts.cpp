#include "lornix/accounts/platform_accounts.h"

#include "lornix/accounts/name_lookup.h"
#include "lornix/faults.h"
#include "store/owned.h"

#include <windows.h>

#include <dsgetdc.h>
#include <lm.h>

#include <cwchar>
#include <span>

namespace lornix {
namespace {

constexpr NET_API_STATUS kOtherRuntime = ERROR_CALL_NOT_IMPLEMENTED;
constexpr DWORD kPageBytes = 1 << 16;

template <class Record>
using NetBuffer = Owned<Record*, NetApiBufferFree>;

template <class Record>
LPBYTE* bytesOf(NetBuffer<Record>& buffer)
{
    return reinterpret_cast<LPBYTE*>(buffer.put());
}

/// Tells what went wrong, if anything did.
void tell(const std::wstring& what, const wchar_t* server, NET_API_STATUS status)
{
    if (status != NERR_Success) {
        ODS("lornix: %ls of %ls cannot be listed: error %lu\n", what.c_str(),
            server == nullptr ? L"this machine" : server, status);
    }
}

/// Goes through the pages of an answer.
/// @param call  gives the next page: takes LPBYTE*, DWORD* read, DWORD* total, DWORD_PTR* resume; gives a status.
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
        status = ifThere(kOtherRuntime, [&] { return call(bytesOf(page), &count, &total, &resume); });
        if ((status != NERR_Success && status != ERROR_MORE_DATA) || page == nullptr || count == 0) {
            break; // a page without anything would otherwise be asked for again and again
        }
        use(std::span<const Record>(page.get(), count));
    }
    return status;
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

/// Adds one kind of display records.
/// @param level   1 for users, 3 for groups.
/// @param number  gives the account number of a record.
/// @param index   gives where the page behind a record starts.
template <class Record>
NET_API_STATUS addDisplayed(const wchar_t* server, DWORD level, DWORD Record::* number, DWORD Record::* index,
                            SidSink& sink)
{
    NetBuffer<USER_MODALS_INFO_2> domain; // whose identifier the accounts of the server start with
    const NET_API_STATUS status =
        ifThere(kOtherRuntime, [&] { return NetUserModalsGet(server, 2, bytesOf(domain)); });
    if (status != NERR_Success) {
        return status;
    }
    if (domain == nullptr || !isSid(domain->usrmod2_domain_id)) {
        return NERR_InternalError;
    }
    DWORD start = 0;
    return forPages<Record>(
        [&](LPBYTE* buffer, DWORD* count, DWORD*, DWORD_PTR*) {
            constexpr DWORD kPage = 1000;
            return NetQueryDisplayInformation(server, level, start, kPage, 4 * kPageBytes, count,
                                              reinterpret_cast<PVOID*>(buffer));
        },
        [&](auto records) {
            for (const Record& record : records) {
                addAccount(domain->usrmod2_domain_id, record.*number, sink);
                start = record.*index;
            }
        });
}

template <class Record>
void addNamed(const wchar_t* server, std::span<const Record> records, wchar_t* Record::* name, SidSink& sink)
{
    std::vector<std::wstring> names;
    for (const Record& record : records) {
        names.emplace_back(record.*name == nullptr ? L"" : record.*name);
    }
    lookUpSids(server, names, sink);
}

/// Whether the server knows another account by the bare name than the one that is meant: the members of a machine's own
/// group must not be taken for those of a domain's.
bool isSomeoneElse(const wchar_t* server, const std::wstring& meant, const std::wstring& bare)
{
    const SidBlock wanted = lookUpSid(server, meant);
    const SidBlock there = lookUpSid(server, bare);
    return there != nullptr && sidcmp(wanted.get(), there.get()) != 0;
}

std::wstring withoutBackslashes(const wchar_t* server)
{
    return server + std::wcsspn(server, L"\\");
}

} // namespace

void addUsers(const wchar_t* server, SidSink& sink)
{
    tell(L"the users", server,
         addDisplayed<NET_DISPLAY_USER>(server, 1, &NET_DISPLAY_USER::usri1_user_id,
                                        &NET_DISPLAY_USER::usri1_next_index, sink));
}

void addGroups(const wchar_t* server, SidSink& sink)
{
    tell(L"the global groups", server,
         addDisplayed<NET_DISPLAY_GROUP>(server, 3, &NET_DISPLAY_GROUP::grpi3_group_id,
                                         &NET_DISPLAY_GROUP::grpi3_next_index, sink));
    const NET_API_STATUS status = forPages<LOCALGROUP_INFO_0>(
        [&](LPBYTE* buffer, DWORD* count, DWORD* total, DWORD_PTR* resume) {
            return NetLocalGroupEnum(server, 0, buffer, kPageBytes, count, total, resume);
        },
        [&](auto groups) { addNamed(server, groups, &LOCALGROUP_INFO_0::lgrpi0_name, sink); });
    tell(L"the local groups", server, status);
}

void addMembers(const wchar_t* server, const std::wstring& group, SidSink& sink)
{
    const std::size_t slash = group.find(L'\\');
    const std::wstring name = group.substr(slash + 1);
    if (slash != std::wstring::npos && isSomeoneElse(server, group, name)) {
        return;
    }
    const NET_API_STATUS local = forPages<LOCALGROUP_MEMBERS_INFO_0>(
        [&](LPBYTE* buffer, DWORD* count, DWORD* total, DWORD_PTR* resume) {
            return NetLocalGroupGetMembers(server, name.c_str(), 0, buffer, kPageBytes, count, total, resume);
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
        [&](auto members) { addNamed(server, members, &GROUP_USERS_INFO_0::grui0_name, sink); });
    for (const NET_API_STATUS status : {local, global}) {
        // A group is of one kind: that the other does not know it is no failure.
        if (status != NERR_GroupNotFound && status != ERROR_NO_SUCH_ALIAS && status != ERROR_NO_SUCH_GROUP) {
            tell(L"the members of \"" + group + L'"', server, status);
        }
    }
}

std::wstring domainServer()
{
    NetBuffer<DOMAIN_CONTROLLER_INFOW> info;
    const DWORD status = ifThere(kOtherRuntime, [&] {
        return DsGetDcNameW(nullptr, nullptr, nullptr, nullptr, DS_RETURN_FLAT_NAME, info.put());
    });
    return status == ERROR_SUCCESS && info != nullptr && info->DomainControllerName != nullptr
               ? withoutBackslashes(info->DomainControllerName)
               : std::wstring();
}

std::wstring secondServer(const std::wstring& server)
{
    // The server that all changes of the domain go through knows what has not reached the nearest one yet.
    NetBuffer<wchar_t> name;
    const NET_API_STATUS status =
        ifThere(kOtherRuntime, [&] { return NetGetDCName(server.c_str(), nullptr, bytesOf(name)); });
    if (status != NERR_Success || name == nullptr) {
        return {};
    }
    const std::wstring second = withoutBackslashes(name.get());
    return _wcsicmp(second.c_str(), withoutBackslashes(server.c_str()).c_str()) == 0 ? std::wstring()
                                                                                     : second;
}

} // namespace lornix
