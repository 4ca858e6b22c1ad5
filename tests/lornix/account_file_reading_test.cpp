// How the account directory file is read: damaged, held, changed, very long.
#include "account_file.h"
#include "debug_lines.h"
#include "held_files.h"

#include <atomic>
#include <set>
#include <thread>

namespace {

using namespace store_test;

class AccountFileReadingTest : public AccountFile {};

ULONGLONG ticks = 0;

ULONGLONG WINAPI handClock()
{
    return ticks;
}

void WINAPI handSleep(DWORD milliseconds)
{
    ticks += milliseconds;
}

TEST_F(AccountFileReadingTest, DamagedLinesAreToldByNumberAndLeftOut)
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

TEST_F(AccountFileReadingTest, ServersUnderADamagedDomainAreNotThoseOfTheDomainAbove)
{
    writeBytes(file(), "lornix accounts 1\n"
                       "domain EXAMPLE S-1-5-21-1-2-3\n"
                       "server DC1\n"
                       "domain OTHER S-1-5-x\n"
                       "server FAR\n"
                       "user S-1-5-21-1-2-3-1 EXAMPLE\\alice\n"
                       "end\n");
    const DebugLines debug;
    EXPECT_EQ(users(L"DC1"), Texts{L"S-1-5-21-1-2-3-1"});
    EXPECT_EQ(users(L"FAR"), Texts());
    EXPECT_EQ(debug.with("line 5 of "), 1);
    EXPECT_EQ(debug.with("it stands under no domain"), 1);
}

TEST_F(AccountFileReadingTest, ManyDamagedLinesAreNotToldWithoutEnd)
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

TEST_F(AccountFileReadingTest, AForeignFileGivesNoAccounts)
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

TEST_F(AccountFileReadingTest, TheVariableNamesTheFile)
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

TEST_F(AccountFileReadingTest, AFileThatIsHeldIsReadWhenItIsLetGo)
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

TEST_F(AccountFileReadingTest, NoFileIsNothingToTell)
{
    const DebugLines debug;
    EXPECT_EQ(sidByName(L"alice"), L"");
    groups(nullptr);
    EXPECT_EQ(debug.with("accounts.txt"), 0);
}

TEST_F(AccountFileReadingTest, AChangedFileIsReadAtTheNextEnumeration)
{
    writeBytes(file(), "lornix accounts 1\nuser S-1-5-21-1-1-1-1 first\nend\n");
    EXPECT_EQ(users(nullptr)[0], L"S-1-5-21-1-1-1-1");
    writeBytes(file(), "lornix accounts 1\nuser S-1-5-21-1-1-1-22 second\nend\n");
    EXPECT_EQ(users(nullptr)[0], L"S-1-5-21-1-1-1-22");
    EXPECT_EQ(sidByName(L"first"), L"");
    EXPECT_EQ(nameOf(L"S-1-5-21-1-1-1-22"), L"second");
}

TEST_F(AccountFileReadingTest, AHundredThousandAccounts)
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

TEST_F(AccountFileReadingTest, AHundredThousandServers)
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

TEST_F(AccountFileReadingTest, ManyThreadsAskWhileTheFileChanges)
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
