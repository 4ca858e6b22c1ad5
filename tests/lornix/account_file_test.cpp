// The account directory file: who is in it, and who is asked first.
#include "account_file.h"

#include "tests/support/import_patch.h"

#include <lm.h>

#include <algorithm>

namespace {

using namespace store_test;

class AccountFileTest : public AccountFile {};

std::wstring taken(wchar_t* text)
{
    const Block<wchar_t> owner(text);
    return text == nullptr ? L"(null)" : text;
}

TEST_F(AccountFileTest, NamesAndSids)
{
    writeBytes(file(), kExample);
    EXPECT_EQ(nameOf(L"S-1-5-21-1-2-3-1001"), L"EXAMPLE\\alice");
    EXPECT_EQ(nameOf(L"S-1-5-21-9-9-9-1001"), L"eve");
    EXPECT_EQ(nameOf(L"S-1-5-21-1-2-3-9999"), L"");
    EXPECT_EQ(sidByName(L"EXAMPLE\\alice"), L"S-1-5-21-1-2-3-1001");
    EXPECT_EQ(sidByName(L"example\\ALICE"), L"S-1-5-21-1-2-3-1001");
    EXPECT_EQ(sidByName(L"Carol"), L"S-1-5-21-4-5-6-1001");
    EXPECT_EQ(sidByName(L"domain users"), L"S-1-5-21-1-2-3-2001");
    EXPECT_EQ(sidByName(L"OTHER\\alice"), L"");
    EXPECT_EQ(sidByName(L""), L"");
    EXPECT_EQ(sidByName(nullptr), L"");
}

TEST_F(AccountFileTest, ThePlatformIsStillAsked)
{
    const Texts before = users(nullptr);
    ASSERT_FALSE(before.empty()) << "this machine has users";
    const Texts groupsBefore = groups(nullptr);
    writeBytes(file(), kExample);
    EXPECT_EQ(sidByName(L"Administrators"), L"S-1-5-32-544");
    EXPECT_NE(nameOf(L"S-1-5-32-544"), L"");
    Texts expected{L"S-1-5-21-7-8-9-1001", L"S-1-5-21-9-9-9-1001"}; // the file first
    expected.insert(expected.end(), before.begin(), before.end());
    EXPECT_EQ(users(nullptr), expected);
    EXPECT_EQ(groups(nullptr).size(), groupsBefore.size() + 1);
}

TEST_F(AccountFileTest, AnAccountOfBothIsTheFiles)
{
    const Texts before = users(nullptr);
    ASSERT_FALSE(before.empty()) << "this machine has users";
    const std::wstring sid = before.back();
    writeBytes(file(),
               "lornix accounts 1\nuser " + std::string(sid.begin(), sid.end()) + " HERE\\renamed\nend\n");
    const Texts all = users(nullptr);
    EXPECT_EQ(all.size(), before.size());
    EXPECT_EQ(all.front(), sid);
    EXPECT_EQ(nameOf(sid), L"HERE\\renamed");
}

TEST_F(AccountFileTest, AccountsBelongToTheServersOfTheirDomain)
{
    writeBytes(file(), kExample);
    const Texts example{L"S-1-5-21-1-2-3-1001", L"S-1-5-21-1-2-3-1002"};
    EXPECT_EQ(users(L"DC1"), example);
    EXPECT_EQ(users(L"\\\\dc2"), example);
    EXPECT_EQ(users(L"far.OTHER.test"), Texts{L"S-1-5-21-4-5-6-1001"});
    EXPECT_EQ(groups(L"DC1"), (Texts{L"S-1-5-21-1-2-3-2001", L"S-1-5-21-1-2-3-2002"}));
    EXPECT_EQ(groups(L"far.other.test"), Texts());
    const Texts local = users(nullptr);
    ASSERT_GE(local.size(), 2u);
    EXPECT_EQ(local[0], L"S-1-5-21-7-8-9-1001"); // a domain without a server
    EXPECT_EQ(local[1], L"S-1-5-21-9-9-9-1001");
    EXPECT_EQ(std::count(local.begin(), local.end(), example[0]), 0);
}

TEST_F(AccountFileTest, AListGrows)
{
    writeBytes(file(), kExample);
    SidList* list = appendToSidList(createEmptySidList(), sidOf(L"S-1-5-21-4-5-6-1001").release());
    list = enumerateUsers(L"far.other.test", list);
    list = enumerateUsers(L"DC1", list);
    // Accounts that are known twice are listed twice.
    EXPECT_EQ(textsOf(Sids(list).get()), (Texts{L"S-1-5-21-4-5-6-1001", L"S-1-5-21-4-5-6-1001",
                                                L"S-1-5-21-1-2-3-1001", L"S-1-5-21-1-2-3-1002"}));
}

TEST_F(AccountFileTest, MembersOfGroups)
{
    writeBytes(file(), kExample);
    const Texts domainUsers{L"S-1-5-21-1-2-3-1001", L"S-1-5-21-1-2-3-1002"};
    EXPECT_EQ(members(L"DC1", L"EXAMPLE\\Domain Users"), domainUsers);
    EXPECT_EQ(members(L"DC1", L"domain users"), domainUsers);
    EXPECT_EQ(members(nullptr, L"EXAMPLE\\Domain Users"), domainUsers);
    EXPECT_EQ(members(L"DC1", L"EXAMPLE\\Ring"),
              (Texts{L"S-1-5-21-1-2-3-1001", L"S-1-5-21-1-2-3-1002", L"S-1-5-21-4-5-6-1001"}));
    EXPECT_EQ(members(nullptr, L"Local Staff"), Texts{L"S-1-5-21-9-9-9-1001"});
    EXPECT_EQ(members(L"DC1", L"EXAMPLE\\alice"), Texts()); // no group
    EXPECT_EQ(members(L"DC1", L"EXAMPLE\\nobody"), Texts());
}

TEST_F(AccountFileTest, AMemberIsListedOnceWhicheverServersKnowIt)
{
    writeBytes(file(), kExample);
    SidList* list = enumerateGroupUsers(nullptr, L"EXAMPLE\\Domain Users", nullptr);
    list = enumerateGroupUsers(L"DC1", L"EXAMPLE\\Domain Users", list);
    list = enumerateGroupUsers(L"far.other.test", L"EXAMPLE\\Domain Users", list);
    EXPECT_EQ(textsOf(Sids(list).get()).size(), 2u);
}

TEST_F(AccountFileTest, DomainAndServers)
{
    writeBytes(file(), kExample);
    EXPECT_EQ(taken(getDomainServer()), L"DC1");
    EXPECT_EQ(taken(getDomainServerByName(L"DC1")), L"FAR.other.test");
    EXPECT_EQ(taken(getDomainServerByName(L"\\\\dc2")), L"FAR.other.test");
    EXPECT_EQ(taken(getDomainServerByName(L"FAR.other.test")), L"(null)");
    EXPECT_EQ(taken(getDomainServerByName(L"")), L"(null)");
    EXPECT_EQ(taken(getDomainServerByName(nullptr)), L"(null)");
    const Block<void> sid(getDomainSid());
    ASSERT_NE(sid, nullptr);
    EXPECT_EQ(textOf(sid.get()), L"S-1-5-21-1-2-3");
}

std::vector<std::wstring> askedForSecond;

NET_API_STATUS WINAPI noSecond(const wchar_t* server, const wchar_t*, LPBYTE*)
{
    askedForSecond.emplace_back(server);
    return NERR_DCNotFound;
}

TEST_F(AccountFileTest, AServerOfTheFileIsNotAskedForTheSecond)
{
    writeBytes(file(), kExample);
    const ImportPatch second(storeModule(), "NetGetDCName", &noSecond);
    ASSERT_EQ(second.count(), 1);
    askedForSecond.clear();
    for (const wchar_t* server : {L"DC1", L"FAR.other.test", L"ELSEWHERE"}) {
        Block<wchar_t>{getDomainServerByName(server)};
    }
    EXPECT_EQ(askedForSecond, Texts{L"ELSEWHERE"});
}

TEST_F(AccountFileTest, WithoutAServerThereIsNoDomain)
{
    writeBytes(file(),
               "lornix accounts 1\ndomain EXAMPLE S-1-5-21-1-2-3\nuser S-1-5-21-1-2-3-1 EXAMPLE\\a\nend\n");
    EXPECT_EQ(Block<void>(getDomainSid()), nullptr);
    EXPECT_EQ(users(nullptr).front(), L"S-1-5-21-1-2-3-1");
}

TEST_F(AccountFileTest, NamesOfAnyKind)
{
    // The letters of a long name, a percent sign and blanks at its end come through.
    const std::string name = "EXAMPLE\\\xC3\x84 50%u0025 \xF0\x9F\x98\x80%u0020";
    writeBytes(file(), "\xEF\xBB\xBFlornix accounts 1\n\n  user\tS-1-5-21-1-2-3-1\t" + name + "\nend\n");
    EXPECT_EQ(nameOf(L"S-1-5-21-1-2-3-1"), L"EXAMPLE\\\x00C4 50% \xD83D\xDE00 ");
    EXPECT_EQ(sidByName(L"example\\\x00E4 50% \xD83D\xDE00 "), L"S-1-5-21-1-2-3-1");
    wchar_t small[10] = L"before";
    EXPECT_EQ(getAccountBySidW(sidOf(L"S-1-5-21-1-2-3-1").get(), small, 10), nullptr);
}

} // namespace
