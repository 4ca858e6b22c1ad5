// Long answers of the platform: all their pages, and what goes wrong in between.
#include "debug_lines.h"
#include "store_test.h"

#include <lm.h>
#include <ntsecapi.h>

#include <functional>

namespace {

using namespace store_test;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kServer = L"FAR";
constexpr const wchar_t* kDomain = L"S-1-5-21-10-20-30";

/// One page of an answer: a status, and the numbers or names in it.
struct Page {
    NET_API_STATUS status;
    int count;
};

/// What the server answers. Records are numbered through all pages.
struct Server {
    std::vector<Page> users, displayedGroups, localGroups, localMembers, globalMembers;
    NET_API_STATUS modals = NERR_Success;
    std::vector<std::wstring> asked;
    int calls = 0;
};
Server server;

std::wstring accountSid(int number)
{
    return kDomain + (L"-" + std::to_wstring(number));
}

template <class Record>
NET_API_STATUS answer(const std::vector<Page>& pages, std::size_t number, LPVOID* buffer, LPDWORD read,
                      const std::function<void(Record&, int)>& fill)
{
    *buffer = nullptr;
    *read = 0;
    ++server.calls;
    if (number >= pages.size()) {
        return ERROR_INVALID_PARAMETER;
    }
    const Page& page = pages[number];
    if (page.status != NERR_Success && page.status != ERROR_MORE_DATA) {
        return page.status;
    }
    int first = 0;
    for (std::size_t i = 0; i < number; ++i) {
        first += pages[i].count;
    }
    NetApiBufferAllocate(static_cast<DWORD>(sizeof(Record)) * static_cast<DWORD>(page.count + 1), buffer);
    auto* records = static_cast<Record*>(*buffer);
    for (int i = 0; i < page.count; ++i) {
        records[i] = {};
        fill(records[i], first + i);
    }
    *read = static_cast<DWORD>(page.count);
    return page.status;
}

NET_API_STATUS WINAPI modalsGet(LPCWSTR name, DWORD level, LPBYTE* buffer)
{
    EXPECT_STREQ(name, kServer);
    EXPECT_EQ(level, 2u);
    *buffer = nullptr;
    if (server.modals != NERR_Success) {
        return server.modals;
    }
    void* block = nullptr;
    NetApiBufferAllocate(sizeof(USER_MODALS_INFO_2) + SECURITY_MAX_SID_SIZE, &block);
    auto* info = static_cast<USER_MODALS_INFO_2*>(block);
    info->usrmod2_domain_name = nullptr;
    info->usrmod2_domain_id = info + 1;
    CopySid(SECURITY_MAX_SID_SIZE, info->usrmod2_domain_id, sidOf(kDomain).get());
    *buffer = static_cast<LPBYTE>(block);
    return NERR_Success;
}

/// The page that starts at a record.
std::size_t pageAt(const std::vector<Page>& pages, DWORD index)
{
    int first = 0;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (first == static_cast<int>(index)) {
            return i;
        }
        first += pages[i].count;
    }
    return pages.size();
}

NET_API_STATUS WINAPI displayInformation(LPCWSTR name, DWORD level, DWORD index, DWORD, DWORD, LPDWORD read,
                                         PVOID* buffer)
{
    EXPECT_STREQ(name, kServer);
    if (level == 1) {
        return answer<NET_DISPLAY_USER>(server.users, pageAt(server.users, index), buffer, read,
                                        [](NET_DISPLAY_USER& record, int number) {
                                            record.usri1_user_id = 1000u + static_cast<DWORD>(number);
                                            record.usri1_next_index = static_cast<DWORD>(number) + 1;
                                        });
    }
    EXPECT_EQ(level, 3u);
    return answer<NET_DISPLAY_GROUP>(server.displayedGroups, pageAt(server.displayedGroups, index), buffer,
                                     read, [](NET_DISPLAY_GROUP& record, int number) {
                                         record.grpi3_group_id = 2000u + static_cast<DWORD>(number);
                                         record.grpi3_next_index = static_cast<DWORD>(number) + 1;
                                     });
}

wchar_t* numberedName(const wchar_t* prefix, int number)
{
    static std::vector<std::unique_ptr<std::wstring>> names;
    names.push_back(std::make_unique<std::wstring>(prefix + std::to_wstring(number)));
    return names.back()->data();
}

NET_API_STATUS WINAPI localGroupEnum(LPCWSTR name, DWORD level, LPBYTE* buffer, DWORD, LPDWORD read, LPDWORD,
                                     PDWORD_PTR resume)
{
    EXPECT_STREQ(name, kServer);
    EXPECT_EQ(level, 0u);
    return answer<LOCALGROUP_INFO_0>(
        server.localGroups, (*resume)++, reinterpret_cast<LPVOID*>(buffer), read,
        [](LOCALGROUP_INFO_0& record, int number) { record.lgrpi0_name = numberedName(L"alias", number); });
}

NET_API_STATUS WINAPI localMembers(LPCWSTR name, LPCWSTR group, DWORD level, LPBYTE* buffer, DWORD,
                                   LPDWORD read, LPDWORD, PDWORD_PTR resume)
{
    EXPECT_STREQ(name, kServer);
    EXPECT_STREQ(group, L"Staff");
    EXPECT_EQ(level, 0u);
    static std::vector<Block<void>> sids;
    return answer<LOCALGROUP_MEMBERS_INFO_0>(server.localMembers, (*resume)++,
                                             reinterpret_cast<LPVOID*>(buffer), read,
                                             [](LOCALGROUP_MEMBERS_INFO_0& record, int number) {
                                                 sids.push_back(sidOf(accountSid(4000 + number)));
                                                 record.lgrmi0_sid = sids.back().get();
                                             });
}

NET_API_STATUS WINAPI globalMembers(LPCWSTR name, LPCWSTR group, DWORD level, LPBYTE* buffer, DWORD,
                                    LPDWORD read, LPDWORD, PDWORD_PTR resume)
{
    EXPECT_STREQ(name, kServer);
    EXPECT_STREQ(group, L"Staff");
    EXPECT_EQ(level, 0u);
    return answer<GROUP_USERS_INFO_0>(
        server.globalMembers, (*resume)++, reinterpret_cast<LPVOID*>(buffer), read,
        [](GROUP_USERS_INFO_0& record, int number) { record.grui0_name = numberedName(L"member", number); });
}

/// alias7 has the number 3007, member7 5007.
BOOL WINAPI lookupAccountName(LPCWSTR name, LPCWSTR account, PSID sid, LPDWORD sidSize, LPWSTR, LPDWORD,
                              PSID_NAME_USE use)
{
    EXPECT_STREQ(name, kServer);
    const std::wstring text = account;
    const bool alias = text.starts_with(L"alias");
    const bool member = text.starts_with(L"member");
    if (!alias && !member) {
        SetLastError(ERROR_NONE_MAPPED);
        return FALSE;
    }
    const int number = std::stoi(text.substr(alias ? 5 : 6));
    *use = alias ? SidTypeAlias : SidTypeUser;
    return CopySid(*sidSize, sid, sidOf(accountSid((alias ? 3000 : 5000) + number)).get());
}

/// So that names are looked up one by one, which is scripted above.
NTSTATUS NTAPI refusePolicy(LSA_UNICODE_STRING*, LSA_OBJECT_ATTRIBUTES*, ACCESS_MASK, LSA_HANDLE*)
{
    constexpr NTSTATUS kNoAccess = static_cast<NTSTATUS>(0xC0000022);
    return kNoAccess;
}

class PlatformPagesTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        server = {};
        for (const ImportPatch* patch :
             {&m_modals, &m_display, &m_groups, &m_localMembers, &m_globalMembers, &m_names, &m_policy})
        {
            ASSERT_EQ(patch->count(), 1);
        }
    }

    static Texts numbers(int first, int count)
    {
        Texts texts;
        for (int i = 0; i < count; ++i) {
            texts.push_back(accountSid(first + i));
        }
        return texts;
    }

private:
    HMODULE m_store = GetModuleHandleW(L"lornix.dll");
    ImportPatch m_modals{m_store, "NetUserModalsGet", &modalsGet};
    ImportPatch m_display{m_store, "NetQueryDisplayInformation", &displayInformation};
    ImportPatch m_groups{m_store, "NetLocalGroupEnum", &localGroupEnum};
    ImportPatch m_localMembers{m_store, "NetLocalGroupGetMembers", &localMembers};
    ImportPatch m_globalMembers{m_store, "NetGroupGetUsers", &globalMembers};
    ImportPatch m_names{m_store, "LookupAccountNameW", &lookupAccountName};
    ImportPatch m_policy{m_store, "LsaOpenPolicy", &refusePolicy};
};

Texts users()
{
    return textsOf(Sids(enumerateUsers(kServer, nullptr)).get());
}

Texts groups()
{
    return textsOf(Sids(enumerateGroups(kServer, nullptr)).get());
}

Texts members()
{
    return textsOf(Sids(enumerateGroupUsers(kServer, L"Staff", nullptr)).get());
}

Texts operator+(Texts left, const Texts& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST_F(PlatformPagesTest, UsersOfAllPages)
{
    server.users = {{ERROR_MORE_DATA, 100}, {ERROR_MORE_DATA, 1}, {ERROR_MORE_DATA, 57}, {NERR_Success, 3}};
    const DebugLines debug;
    EXPECT_EQ(users(), numbers(1000, 161));
    EXPECT_EQ(server.calls, 4);
    EXPECT_EQ(debug.with("error"), 0);
}

TEST_F(PlatformPagesTest, OnePageAndNone)
{
    server.users = {{NERR_Success, 2}};
    EXPECT_EQ(users(), numbers(1000, 2));
    server.users = {{NERR_Success, 0}};
    EXPECT_EQ(enumerateUsers(kServer, nullptr), nullptr);
}

TEST_F(PlatformPagesTest, AFailingPageKeepsThoseBefore)
{
    server.users = {{ERROR_MORE_DATA, 10}, {ERROR_MORE_DATA, 10}, {ERROR_ACCESS_DENIED, 0}};
    const DebugLines debug;
    EXPECT_EQ(users(), numbers(1000, 20));
    EXPECT_EQ(debug.with("the users of FAR cannot be listed: error 5"), 1);
}

TEST_F(PlatformPagesTest, ARefusalGivesNothing)
{
    const DebugLines debug;
    server.users = {{ERROR_ACCESS_DENIED, 0}};
    EXPECT_EQ(enumerateUsers(kServer, nullptr), nullptr);
    server.modals = RPC_S_SERVER_UNAVAILABLE;
    server.users = {{NERR_Success, 3}};
    EXPECT_EQ(enumerateUsers(kServer, nullptr), nullptr);
    EXPECT_EQ(debug.with("the users of FAR cannot be listed"), 2);
}

TEST_F(PlatformPagesTest, AListThatIsGivenGrowsOrStays)
{
    server.users = {{ERROR_MORE_DATA, 2}, {NERR_Success, 2}};
    SidList* list = appendToSidList(createEmptySidList(), sidOf(L"S-1-1-0").release());
    list = enumerateUsers(kServer, list);
    EXPECT_EQ(textsOf(list), Texts{L"S-1-1-0"} + numbers(1000, 4));
    server.users = {{ERROR_ACCESS_DENIED, 0}};
    EXPECT_EQ(enumerateUsers(kServer, list), list);
    EXPECT_EQ(list->count, 5);
    freeSidList(list);
}

TEST_F(PlatformPagesTest, AnEmptyPageThatPromisesMoreEndsTheList)
{
    server.users = {{ERROR_MORE_DATA, 5}, {ERROR_MORE_DATA, 0}};
    EXPECT_EQ(users(), numbers(1000, 5));
    EXPECT_EQ(server.calls, 2);
}

TEST_F(PlatformPagesTest, GroupsOfBothKindsAndAllPages)
{
    server.displayedGroups = {{ERROR_MORE_DATA, 3}, {NERR_Success, 2}};
    server.localGroups = {{ERROR_MORE_DATA, 2}, {ERROR_MORE_DATA, 2}, {NERR_Success, 1}};
    EXPECT_EQ(groups(), numbers(2000, 5) + numbers(3000, 5));
}

TEST_F(PlatformPagesTest, OneKindOfGroupsFailing)
{
    const DebugLines debug;
    server.displayedGroups = {{ERROR_ACCESS_DENIED, 0}};
    server.localGroups = {{NERR_Success, 2}};
    EXPECT_EQ(groups(), numbers(3000, 2));
    server.displayedGroups = {{NERR_Success, 2}};
    server.localGroups = {{ERROR_MORE_DATA, 1}, {ERROR_NOT_ENOUGH_MEMORY, 0}};
    EXPECT_EQ(groups(), numbers(2000, 2) + numbers(3000, 1));
    EXPECT_EQ(debug.with("the global groups of FAR cannot be listed: error 5"), 1);
    EXPECT_EQ(debug.with("the local groups of FAR cannot be listed: error 8"), 1);
}

TEST_F(PlatformPagesTest, MembersOfAllPages)
{
    server.localMembers = {{ERROR_MORE_DATA, 3}, {NERR_Success, 1}};
    server.globalMembers = {{NERR_GroupNotFound, 0}};
    const DebugLines debug;
    EXPECT_EQ(members(), numbers(4000, 4));
    server.localMembers = {{NERR_GroupNotFound, 0}};
    server.globalMembers = {{ERROR_MORE_DATA, 2}, {ERROR_MORE_DATA, 2}, {NERR_Success, 2}};
    EXPECT_EQ(members(), numbers(5000, 6));
    EXPECT_EQ(debug.with("error"), 0);
}

TEST_F(PlatformPagesTest, AHundredThousandUsers)
{
    for (int i = 0; i < 999; ++i) {
        server.users.push_back({ERROR_MORE_DATA, 100});
    }
    server.users.push_back({NERR_Success, 100});
    const Sids list(enumerateUsers(kServer, nullptr));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->count, 100000);
}

} // namespace
