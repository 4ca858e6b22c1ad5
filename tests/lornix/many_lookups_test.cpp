// Names and accounts that are looked up many at a time.
#include "later_clock.h"
#include "store_test.h"

#include "tests/support/import_patch.h"

#include <lm.h>
#include <ntsecapi.h>

#include <algorithm>

namespace {

using namespace store_test;

constexpr const wchar_t* kFarServer = L"FAR";
constexpr NTSTATUS kSomeNotMapped = 0x107;
constexpr NTSTATUS kNoneMapped = static_cast<NTSTATUS>(0xC0000073);
constexpr NTSTATUS kRefused = static_cast<NTSTATUS>(0xC0000022);

/// What the platform is asked and answers. Account 17 of a list is S-1-5-21-4-4-4-17, FARAWAY\user17; every tenth one
/// is unknown.
struct Platform {
    std::vector<std::wstring> byNumber; ///< members that a group tells by their identifiers
    std::vector<std::wstring> byName;   ///< and by their names
    NTSTATUS open = 0;
    NTSTATUS answer = kSomeNotMapped;
    int names = 0, sids = 0; ///< questions for many
    int singleNames = 0, singleSids = 0;
    std::size_t most = 0; ///< in one question
};
Platform platform;
int lastList = 0; ///< a list of its own for each test: names are remembered

std::wstring domainOf(int list)
{
    return L"S-1-5-21-4-4-" + std::to_wstring(list);
}

int numberOf(PSID sid)
{
    return static_cast<int>(*GetSidSubAuthority(sid, *GetSidSubAuthorityCount(sid) - 1u));
}

bool isKnown(int number)
{
    return number % 10 != 9;
}

std::wstring nameOf(int number)
{
    return L"user" + std::to_wstring(number);
}

/// A block that the platform's own function would release, with text behind the records.
template <class Record>
Record* blockOf(std::size_t count)
{
    return static_cast<Record*>(calloc(count + 1, sizeof(Record)));
}

wchar_t* lastingText(const std::wstring& text)
{
    static std::vector<std::unique_ptr<std::wstring>> texts;
    texts.push_back(std::make_unique<std::wstring>(text));
    return texts.back()->data();
}

LSA_UNICODE_STRING lsaText(const std::wstring& text)
{
    const auto bytes = static_cast<USHORT>(text.size() * sizeof(wchar_t));
    return {bytes, bytes, lastingText(text)};
}

NTSTATUS NTAPI openPolicy(LSA_UNICODE_STRING*, LSA_OBJECT_ATTRIBUTES*, ACCESS_MASK, LSA_HANDLE* handle)
{
    *handle = &platform;
    return platform.open;
}

NTSTATUS NTAPI closePolicy(LSA_HANDLE handle)
{
    EXPECT_EQ(handle, &platform);
    return 0;
}

NTSTATUS NTAPI freeAnswer(void* answer)
{
    free(answer);
    return 0;
}

NTSTATUS NTAPI lookUpSids(LSA_HANDLE handle, ULONG count, PSID* sids, LSA_REFERENCED_DOMAIN_LIST** domains,
                          LSA_TRANSLATED_NAME** names)
{
    EXPECT_EQ(handle, &platform);
    ++platform.names;
    platform.most = std::max<std::size_t>(platform.most, count);
    if (platform.answer < 0) {
        return platform.answer;
    }
    static LSA_TRUST_INFORMATION domain{};
    domain.Name = lsaText(L"FARAWAY");
    *domains = blockOf<LSA_REFERENCED_DOMAIN_LIST>(1);
    (*domains)->Entries = 1;
    (*domains)->Domains = &domain;
    *names = blockOf<LSA_TRANSLATED_NAME>(count);
    for (ULONG i = 0; i < count; ++i) {
        const int number = numberOf(sids[i]);
        (*names)[i] = isKnown(number) ? LSA_TRANSLATED_NAME{SidTypeUser, lsaText(nameOf(number)), 0}
                                      : LSA_TRANSLATED_NAME{SidTypeUnknown, lsaText(L"S-1-5-21-..."), -1};
    }
    return platform.answer;
}

NTSTATUS NTAPI lookUpNames(LSA_HANDLE handle, ULONG, ULONG count, LSA_UNICODE_STRING* names,
                           LSA_REFERENCED_DOMAIN_LIST** domains, LSA_TRANSLATED_SID2** sids)
{
    EXPECT_EQ(handle, &platform);
    ++platform.sids;
    platform.most = std::max<std::size_t>(platform.most, count);
    if (platform.answer < 0) {
        return platform.answer;
    }
    *domains = blockOf<LSA_REFERENCED_DOMAIN_LIST>(1);
    *sids = blockOf<LSA_TRANSLATED_SID2>(count);
    static std::vector<Block<void>> kept;
    for (ULONG i = 0; i < count; ++i) {
        const int number = _wtoi(names[i].Buffer + wcslen(L"user"));
        (*sids)[i].Use = isKnown(number) ? SidTypeUser : SidTypeUnknown;
        if (isKnown(number)) {
            kept.push_back(sidOf(domainOf(lastList) + L'-' + std::to_wstring(number)));
            (*sids)[i].Sid = kept.back().get();
        }
    }
    return platform.answer;
}

BOOL WINAPI lookUpOneSid(const wchar_t*, PSID sid, wchar_t* name, DWORD*, wchar_t* domain, DWORD*,
                         SID_NAME_USE* use)
{
    ++platform.singleNames;
    wcscpy(name, nameOf(numberOf(sid)).c_str());
    wcscpy(domain, L"ONE");
    *use = SidTypeUser;
    return TRUE;
}

BOOL WINAPI lookUpOneName(const wchar_t* server, const wchar_t* account, PSID sid, DWORD* sidSize, wchar_t*,
                          DWORD*, SID_NAME_USE* use)
{
    EXPECT_STREQ(server, kFarServer);
    ++platform.singleSids;
    *use = SidTypeUser;
    const int number = _wtoi(account + wcslen(L"user"));
    return CopySid(*sidSize, sid, sidOf(domainOf(lastList) + L'-' + std::to_wstring(number)).get());
}

/// All records on one page.
template <class Record, class Value>
NET_API_STATUS onePage(const std::vector<Value>& values, LPBYTE* buffer, DWORD* count)
{
    void* block = nullptr;
    NetApiBufferAllocate(static_cast<DWORD>((values.size() + 1) * sizeof(Record)), &block);
    std::transform(values.begin(), values.end(), static_cast<Record*>(block),
                   [](const Value& value) { return Record{value}; });
    *buffer = static_cast<LPBYTE>(block);
    *count = static_cast<DWORD>(values.size());
    return NERR_Success;
}

NET_API_STATUS WINAPI membersBySid(const wchar_t*, const wchar_t*, DWORD, LPBYTE* buffer, DWORD, DWORD* count,
                                   DWORD*, DWORD_PTR*)
{
    static std::vector<Block<void>> kept;
    std::vector<void*> sids;
    for (const std::wstring& text : platform.byNumber) {
        kept.push_back(sidOf(text));
        sids.push_back(kept.back().get());
    }
    return onePage<LOCALGROUP_MEMBERS_INFO_0>(sids, buffer, count);
}

NET_API_STATUS WINAPI membersByGroup(const wchar_t*, const wchar_t*, DWORD, LPBYTE* buffer, DWORD,
                                     DWORD* count, DWORD*, DWORD_PTR*)
{
    std::vector<wchar_t*> names;
    for (const std::wstring& name : platform.byName) {
        names.push_back(lastingText(name));
    }
    return onePage<GROUP_USERS_INFO_0>(names, buffer, count);
}

class ManyLookupsTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        platform = {};
        addedTime = 0;
        ++lastList;
        for (const ImportPatch& patch : m_patches) {
            ASSERT_EQ(patch.count(), 1);
        }
    }

    static Sids members() { return Sids(enumerateGroupUsers(kFarServer, L"Staff", nullptr)); }

    static Sids membersByNumber(int count)
    {
        for (int i = 0; i < count; ++i) {
            platform.byNumber.push_back(domainOf(lastList) + L'-' + std::to_wstring(i));
        }
        return members();
    }

    static void expectNames(const SidList* list, const std::wstring& domain, bool knowsAll)
    {
        void* const* sids = list->sids;
        for (int i = 0; i < list->count; ++i) {
            wchar_t buffer[100] = L"";
            const wchar_t* name = getAccountBySidW(sids[i], buffer, 100);
            if (knowsAll || isKnown(i)) {
                ASSERT_NE(name, nullptr) << i;
                ASSERT_EQ(name, domain + L'\\' + nameOf(i)) << i;
            } else {
                ASSERT_EQ(name, nullptr) << i;
            }
        }
    }

private:
    HMODULE m_store = storeModule();
    ImportPatch m_patches[10]{
        {m_store, "LsaOpenPolicy", &openPolicy},         {m_store, "LsaClose", &closePolicy},
        {m_store, "LsaFreeMemory", &freeAnswer},         {m_store, "LsaLookupSids", &lookUpSids},
        {m_store, "LsaLookupNames2", &lookUpNames},      {m_store, "LookupAccountSidW", &lookUpOneSid},
        {m_store, "LookupAccountNameW", &lookUpOneName}, {m_store, "NetLocalGroupGetMembers", &membersBySid},
        {m_store, "NetGroupGetUsers", &membersByGroup},  {m_store, "GetTickCount64", &laterTime}};
};

TEST_F(ManyLookupsTest, TheNamesOfAListAreAskedForTogether)
{
    const Sids list = membersByNumber(1000);
    ASSERT_EQ(list->count, 1000);
    EXPECT_EQ(platform.names, 0) << "not before anybody wants to know";
    expectNames(list.get(), L"FARAWAY", false);
    EXPECT_EQ(platform.names, 4);
    EXPECT_EQ(platform.singleNames, 0);
    expectNames(list.get(), L"FARAWAY", false);
    EXPECT_EQ(platform.names, 4) << "and remembered, those too that nobody knows";
}

TEST_F(ManyLookupsTest, TheNamesOfRulesAreAskedForTogether)
{
    std::vector<Rule> rules;
    for (int i = 0; i < 500; ++i) {
        rules.push_back({.path = L"D:\\Projects", .sid = domainOf(lastList) + L'-' + std::to_wstring(i)});
    }
    store({L"D:\\Projects"}, rules);
    const Chain chain(getQuotaList(L"D:\\Projects"));
    EXPECT_EQ(platform.names, 0);
    int count = 0;
    for (const QuotaRule* rule = chain.get(); rule != nullptr; rule = rule->next, ++count) {
        wchar_t buffer[100];
        EXPECT_EQ(getAccountBySidW(rule->sid, buffer, 100) != nullptr, isKnown(numberOf(rule->sid)));
    }
    EXPECT_EQ(count, 500);
    EXPECT_EQ(platform.names, 2);
    EXPECT_EQ(platform.singleNames, 0);
}

TEST_F(ManyLookupsTest, NamesWhoseTimeIsOverAreAskedForTogether)
{
    const Sids list = membersByNumber(500);
    expectNames(list.get(), L"FARAWAY", false);
    platform.names = 0;
    addedTime = 61000;
    expectNames(list.get(), L"FARAWAY", false);
    EXPECT_GE(platform.names, 2);
    EXPECT_LE(platform.names, 3) << "with those of other lists";
    EXPECT_LE(platform.most, 250u);
}

TEST_F(ManyLookupsTest, ThoseThatNobodyKnowsAreAnAnswerToo)
{
    platform.answer = kNoneMapped;
    const Sids list = membersByNumber(100);
    void* const* sids = list->sids;
    for (int i = 0; i < 100; ++i) {
        wchar_t buffer[100];
        EXPECT_EQ(getAccountBySidW(sids[i], buffer, 100), nullptr);
    }
    EXPECT_EQ(platform.names, 1);
    EXPECT_EQ(platform.singleNames, 0);
}

TEST_F(ManyLookupsTest, APlatformThatRefusesIsAskedOneByOne)
{
    const Sids list = membersByNumber(300);
    platform.answer = kRefused;
    expectNames(list.get(), L"ONE", true);
    EXPECT_EQ(platform.singleNames, 300);
    EXPECT_LE(platform.names, 2) << "not again and again";
}

TEST_F(ManyLookupsTest, MembersByNameAreLookedUpTogether)
{
    for (int i = 0; i < 2500; ++i) {
        platform.byName.push_back(nameOf(i));
    }
    const Sids list = members();
    ASSERT_EQ(list->count, 2250);
    EXPECT_EQ(platform.sids, 3);
    EXPECT_LE(platform.most, 1000u) << "as many as the platform takes";
    EXPECT_EQ(platform.singleSids, 0);
    std::vector<std::wstring> expected;
    for (int i = 0; i < 2500; ++i) {
        if (isKnown(i)) {
            expected.push_back(domainOf(lastList) + L'-' + std::to_wstring(i));
        }
    }
    EXPECT_EQ(textsOf(list.get()), expected);
}

TEST_F(ManyLookupsTest, AServerThatRefusesIsAskedNameByName)
{
    platform.byName = {nameOf(1), nameOf(2)};
    platform.open = kRefused;
    EXPECT_EQ(members()->count, 2);
    platform.open = 0;
    platform.answer = kRefused;
    EXPECT_EQ(members()->count, 2);
    EXPECT_EQ(platform.singleSids, 4);
    EXPECT_EQ(platform.sids, 1);
}

} // namespace
