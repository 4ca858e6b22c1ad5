// The account directory file: who is in it, who is asked first, what a damaged line does.
#include "debug_lines.h"
#include "held_files.h"
#include "store_test.h"

#include <algorithm>
#include <set>
#include <thread>

namespace {

using namespace store_test;

constexpr const wchar_t* kAccountsVariable = L"LORNIX_ACCOUNTS";

constexpr const char* kExample = "lornix accounts 1\r\n"
                                 "# two domains, the second without SIDs of its own machine\r\n"
                                 "domain EXAMPLE S-1-5-21-1-2-3\r\n"
                                 "server DC1\r\n"
                                 "server \\\\DC2\r\n"
                                 "domain OTHER S-1-5-21-4-5-6\r\n"
                                 "server FAR.other.test\r\n"
                                 "domain EMPTY S-1-5-21-7-8-9\r\n"
                                 "user S-1-5-21-1-2-3-1001 EXAMPLE\\alice\r\n"
                                 "user S-1-5-21-1-2-3-1002 EXAMPLE\\bob\r\n"
                                 "user S-1-5-21-4-5-6-1001 OTHER\\carol\r\n"
                                 "user S-1-5-21-7-8-9-1001 EMPTY\\dora\r\n"
                                 "user S-1-5-21-9-9-9-1001 eve\r\n"
                                 "group S-1-5-21-1-2-3-2001 EXAMPLE\\Domain Users\r\n"
                                 "member EXAMPLE\\bob\r\n"
                                 "member S-1-5-21-1-2-3-1001\r\n"
                                 "group S-1-5-21-1-2-3-2002 EXAMPLE\\Ring\r\n"
                                 "member carol\r\n"
                                 "member EXAMPLE\\ring\r\n"
                                 "member example\\DOMAIN USERS\r\n"
                                 "member bob\r\n"
                                 "group S-1-5-21-9-9-9-2001 Local Staff\r\n"
                                 "member eve\r\n"
                                 "end\r\n";

ULONGLONG ticks = 0;

ULONGLONG WINAPI handClock()
{
    return ticks;
}

void WINAPI handSleep(DWORD milliseconds)
{
    ticks += milliseconds;
}

class AccountFileTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        SetEnvironmentVariableW(kAccountsVariable, nullptr);
    }
    void TearDown() override
    {
        SetEnvironmentVariableW(kAccountsVariable, nullptr);
        StoreTest::TearDown();
    }
    std::filesystem::path file() const { return data() / L"accounts.txt"; }
};

std::vector<std::wstring> users(const wchar_t* server)
{
    return textsOf(Sids(enumerateUsers(server, nullptr)).get());
}

std::vector<std::wstring> groups(const wchar_t* server)
{
    return textsOf(Sids(enumerateGroups(server, nullptr)).get());
}

std::vector<std::wstring> members(const wchar_t* server, const wchar_t* group)
{
    return textsOf(Sids(enumerateGroupUsers(server, group, nullptr)).get());
}

std::wstring nameOf(const std::wstring& sid)
{
    wchar_t buffer[512] = L"";
    return getAccountBySidW(sidOf(sid).get(), buffer, 512) == nullptr ? L"" : buffer;
}

std::wstring sidByName(const wchar_t* name)
{
    const Block<void> sid(getSidByNameW(name));
    return sid == nullptr ? L"" : textOf(sid.get());
}

std::wstring taken(wchar_t* text)
{
    const Block<wchar_t> owner(text);
    return text == nullptr ? L"(null)" : text;
}

using Texts = std::vector<std::wstring>;

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

TEST_F(AccountFileTest, WithoutAServerThereIsNoDomain)
{
    writeBytes(file(),
               "lornix accounts 1\ndomain EXAMPLE S-1-5-21-1-2-3\nuser S-1-5-21-1-2-3-1 EXAMPLE\\a\nend\n");
    EXPECT_EQ(Block<void>(getDomainSid()), nullptr);
    EXPECT_EQ(users(nullptr).front(), L"S-1-5-21-1-2-3-1");
}

TEST_F(AccountFileTest, DamagedLinesAreToldByNumberAndLeftOut)
{
    struct Line {
        const char* text;
        const char* flaw;
    };
    const Line lines[] = {
        {"domain NOSID", "a name and a SID are expected"},                        // 2
        {"server EARLY", "it stands under no domain"},                            // 3
        {"user S-1-5-21-1-2-3-1 good", nullptr},                                  // 4
        {"user S-1-5-x wrong", "the second word is no SID"},                      // 5
        {"user S-1-5-21-1-2-3-2", "the name of an account is expected"},          // 6
        {"user S-1-5-21-1-2-3-1 again", "the SID stands above already"},          // 7
        {"user S-1-5-21-1-2-3-3 GOOD", "the name stands above already"},          // 8
        {"user S-1-5-21-1-2-3-4 \xFF\xFE", "the name of an account is expected"}, // 9
        {"member good", "it stands under no group"},                              // 10
        {"group S-1-5-21-1-2-3-5 EX\\", "the name of an account is expected"},    // 11
        {"group S-1-5-21-1-2-3-6 G", nullptr},                                    // 12
        {"member nobody", "the member is no account"},                            // 13
        {"member later", nullptr},                                                // 14
        {"colour red", "its first word is none that is known"},                   // 15
        {"user S-1-5-21-1-2-3-7 later", nullptr},                                 // 16
    };
    std::string text = "lornix accounts 1\n";
    for (const Line& line : lines) {
        text += line.text + std::string("\n");
    }
    writeBytes(file(), text); // line 17: no end
    const DebugLines debug;
    EXPECT_EQ(users(nullptr)[0], L"S-1-5-21-1-2-3-1");
    int number = 2;
    int flaws = 0;
    for (const Line& line : lines) {
        const std::string place = "line " + std::to_string(number++) + " of ";
        EXPECT_EQ(debug.with(place), line.flaw == nullptr ? 0 : 1) << place;
        if (line.flaw != nullptr) {
            ++flaws;
            EXPECT_GE(debug.with(line.flaw), 1) << line.flaw;
        }
    }
    EXPECT_EQ(debug.with("line 17 of "), 1);
    EXPECT_EQ(debug.with("is left out"), flaws + 1);
    EXPECT_EQ(members(nullptr, L"G"), Texts{L"S-1-5-21-1-2-3-7"});
    EXPECT_EQ(debug.with("is left out"), flaws + 1); // told once
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(bytesOf(file()), text); // a person's file is never rewritten
}

TEST_F(AccountFileTest, ManyDamagedLinesAreNotToldWithoutEnd)
{
    std::string text = "lornix accounts 1\n";
    for (int i = 0; i < 5000; ++i) {
        text += "rubbish\n";
    }
    writeBytes(file(), text + "end\n");
    const DebugLines debug;
    users(nullptr);
    EXPECT_EQ(debug.with(" is left out"), 100);
    EXPECT_EQ(debug.with("4900 more lines"), 1);
}

TEST_F(AccountFileTest, AForeignFileGivesNoAccounts)
{
    const DebugLines debug;
    for (const char* text :
         {"", "user S-1-5-21-1-2-3-1 a\n", "lornix accounts 2\nuser S-1-5-21-1-2-3-1 a\nend\n"})
    {
        writeBytes(file(), text);
        EXPECT_EQ(sidByName(L"a"), L"") << text;
    }
    users(nullptr);
    EXPECT_GE(debug.with("is no file of accounts"), 1);
}

TEST_F(AccountFileTest, TheVariableNamesTheFile)
{
    writeBytes(file(), kExample);
    const auto named = root() / L"named.txt";
    writeBytes(named, "lornix accounts 1\nuser S-1-5-21-1-1-1-1 zoe\nend\n");
    SetEnvironmentVariableW(kAccountsVariable, named.c_str());
    EXPECT_EQ(sidByName(L"zoe"), L"S-1-5-21-1-1-1-1");
    EXPECT_EQ(sidByName(L"alice"), L"");
    SetEnvironmentVariableW(kAccountsVariable, nullptr);
    EXPECT_EQ(sidByName(L"zoe"), L"");
    EXPECT_EQ(sidByName(L"alice"), L"S-1-5-21-1-2-3-1001");
    const DebugLines debug;
    SetEnvironmentVariableW(kAccountsVariable, (root() / L"missing.txt").c_str());
    EXPECT_EQ(sidByName(L"alice"), L"");
    EXPECT_EQ(debug.with("missing.txt\" cannot be read"), 1);
}

TEST_F(AccountFileTest, AFileThatIsHeldIsReadWhenItIsLetGo)
{
    writeBytes(file(), kExample);
    EXPECT_EQ(sidByName(L"alice"), L"S-1-5-21-1-2-3-1001");
    writeBytes(file(), std::string(kExample) + "\n");
    const DebugLines debug;
    const ImportPatch clock(storeModule(), "GetTickCount64", &handClock);
    const ImportPatch sleep(storeModule(), "Sleep", &handSleep);
    ASSERT_EQ(clock.count(), 1);
    ASSERT_EQ(sleep.count(), 1);
    {
        const HeldFiles held;
        const ULONGLONG start = ticks;
        free(getDomainServer()); // looks whether the file changed
        EXPECT_EQ(sidByName(L"alice"), L"S-1-5-21-1-2-3-1001") << "what was read before counts on";
        EXPECT_EQ(ticks - start, 300u) << "the wait of whoever only reads, and once for all questions";
    }
    EXPECT_GE(debug.with("accounts.txt\" cannot be read"), 1);

    const auto named = root() / L"held.txt";
    writeBytes(named, "lornix accounts 1\nuser S-1-5-21-1-1-1-1 zoe\nend\n");
    SetEnvironmentVariableW(kAccountsVariable, named.c_str());
    {
        const HeldFiles held;
        EXPECT_EQ(sidByName(L"zoe"), L"");
        EXPECT_EQ(sidByName(L"alice"), L"") << "of another file";
    }
    EXPECT_EQ(sidByName(L"zoe"), L"") << "not looked for again at once";
    ticks += 1000;
    EXPECT_EQ(sidByName(L"zoe"), L"S-1-5-21-1-1-1-1") << "although the file was not touched";
}

TEST_F(AccountFileTest, NoFileIsNothingToTell)
{
    const DebugLines debug;
    EXPECT_EQ(sidByName(L"alice"), L"");
    groups(nullptr);
    EXPECT_EQ(debug.with("accounts.txt"), 0);
}

TEST_F(AccountFileTest, AChangedFileIsReadAtTheNextEnumeration)
{
    writeBytes(file(), "lornix accounts 1\nuser S-1-5-21-1-1-1-1 first\nend\n");
    EXPECT_EQ(users(nullptr)[0], L"S-1-5-21-1-1-1-1");
    writeBytes(file(), "lornix accounts 1\nuser S-1-5-21-1-1-1-22 second\nend\n");
    EXPECT_EQ(users(nullptr)[0], L"S-1-5-21-1-1-1-22");
    EXPECT_EQ(sidByName(L"first"), L"");
    EXPECT_EQ(nameOf(L"S-1-5-21-1-1-1-22"), L"second");
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

TEST_F(AccountFileTest, AHundredThousandAccounts)
{
    constexpr int kUsers = 90000;
    constexpr int kGroups = 10000;
    std::string text = "lornix accounts 1\ndomain BIG S-1-5-21-10-20-30\nserver BIGDC\n";
    for (int i = 0; i < kUsers; ++i) {
        const std::string number = std::to_string(i);
        text += "user S-1-5-21-10-20-30-" + std::to_string(1000 + i) + " BIG\\user" + number + "\n";
    }
    for (int i = 0; i < kGroups; ++i) {
        text += "group S-1-5-21-10-20-30-" + std::to_string(500000 + i) + " BIG\\group" + std::to_string(i) +
                "\n";
        for (int member = 0; member < 9; ++member) {
            text += "member BIG\\user" + std::to_string(i * 9 + member) + "\n";
        }
    }
    writeBytes(file(), text + "end\n");
    const Sids list(enumerateUsers(L"BIGDC", nullptr));
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count, kUsers);
    const Sids groupList(enumerateGroups(L"BIGDC", nullptr));
    ASSERT_NE(groupList, nullptr);
    EXPECT_EQ(groupList->count, kGroups);
    // Every account both ways: a search from one end to the other would not come to an end.
    std::set<std::wstring> seen;
    void* const* sids = list->sids;
    for (int i = 0; i < kUsers; ++i) {
        wchar_t name[64] = L"";
        ASSERT_NE(getAccountBySidW(sids[i], name, 64), nullptr);
        const Block<void> back(getSidByNameW(name));
        ASSERT_NE(back, nullptr);
        ASSERT_EQ(sidcmp(back.get(), sids[i]), 0) << i;
        seen.insert(name);
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(kUsers));
    EXPECT_EQ(members(L"BIGDC", L"BIG\\group9999").size(), 9u);
}

TEST_F(AccountFileTest, AHundredThousandServers)
{
    // Each is compared with those above it: one by one, that would not come to an end.
    std::string text = "lornix accounts 1\ndomain BIG S-1-5-21-10-20-30\n";
    for (int i = 0; i < 100000; ++i) {
        text += "server DC" + std::to_string(i) + "\n";
    }
    text += "server dc99999\nuser S-1-5-21-10-20-30-1 BIG\\a\nend\n";
    writeBytes(file(), text);
    const DebugLines debug;
    EXPECT_EQ(users(L"DC77777"), Texts{L"S-1-5-21-10-20-30-1"});
    EXPECT_EQ(debug.with("line 100003 of "), 1);
    EXPECT_EQ(debug.with("the server stands above already"), 1);
}

TEST_F(AccountFileTest, ManyThreadsAskWhileTheFileChanges)
{
    writeBytes(file(), kExample);
    std::atomic<bool> stop = false;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (!stop) {
                const std::wstring sid = sidByName(L"alice");
                wrong += sid == L"S-1-5-21-1-2-3-1001" ? 0 : 1;
                const Texts all = users(L"DC1");
                wrong += all.size() == 2 || all.size() == 1 ? 0 : 1;
            }
        });
    }
    const auto next = root() / L"next.txt";
    for (int round = 0; round < 30; ++round) {
        const bool small = round % 2 == 0;
        writeBytes(next, small ? "lornix accounts 1\ndomain EXAMPLE S-1-5-21-1-2-3\nserver DC1\n"
                                 "user S-1-5-21-1-2-3-1001 EXAMPLE\\alice\nend\n"
                               : kExample);
        // A file that somebody reads at this moment cannot be replaced: as an editor would, try again.
        bool replaced = false;
        for (int tries = 0; !replaced && tries < 100000; ++tries) {
            replaced = MoveFileExW(next.c_str(), file().c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
        }
        EXPECT_TRUE(replaced) << GetLastError();
        EXPECT_EQ(users(L"DC1").size(), small ? 1u : 2u);
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

} // namespace
