// Damaged and foreign files, and those of a newer version: told, left as they are by reading, never stored over.
#include "store_test.h"

#include "lornix/rules/rule_book.h"
#include "lornix/text/folder_key.h"

#include <cstdio>
#include <random>

namespace {

using namespace store_test;

constexpr const wchar_t* kFolder = L"D:\\Projects";
constexpr const char* kHead = "lornix rules 1\r\n";

class DamageTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        store({kFolder}, {{kFolder, 5, 4, 3}, {kFolder, 6, 5, 4, L"S-1-5-32-545"}});
        m_good = bytesOf(rulesFile());
    }

    static int storeNine()
    {
        return lornixStoreRules(foldersOf({kFolder}).get(), chainOf({{kFolder, 9}}).get());
    }

    /// Expects reading to give some rules and a report, and to leave everything as it is.
    void expectRead(const std::string& bytes, const std::vector<Rule>& rules, const std::wstring& report)
    {
        writeBytes(rulesFile(), bytes);
        const auto names = namesIn(data());
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(stored(kFolder), rules);
            EXPECT_TRUE(reported(report));
            EXPECT_TRUE(reported(rulesFile().wstring()));
            namesOf(Folders(lornixKnownFolders()).get());
            EXPECT_TRUE(reported(report));
        }
        EXPECT_EQ(bytesOf(rulesFile()), bytes);
        EXPECT_EQ(namesIn(data()), names) << "nothing is moved, nothing is made";
    }

    /// Expects storing to set aside what was there, whole.
    void expectStoringSetsAside(const std::string& bytes)
    {
        const std::size_t before = namesIn(setAside()).size();
        EXPECT_EQ(storeNine(), 1);
        const auto names = namesIn(setAside());
        ASSERT_EQ(names.size(), before + 1);
        EXPECT_EQ(bytesOf(setAside() / names.back()), bytes);
        EXPECT_TRUE(reported((setAside() / names.back()).wstring()));
        EXPECT_EQ(stored(kFolder), (std::vector<Rule>{{kFolder, 9}}));
        EXPECT_STREQ(lornixLastError(), L"");
    }

    std::string m_good;
};

TEST_F(DamageTest, DamagedLineIsLeftOutAndTheRestGoesOn)
{
    store({kFolder, L"D:\\Users"}, {{kFolder, 5, 4, 3}, {kFolder, 6, 5, 4, L"S-1-5-32-545"}, {L"D:\\Users"}});
    std::string damaged = bytesOf(rulesFile());
    damaged.replace(damaged.find("6\t5\t4"), 1, "x");
    expectRead(damaged, {{kFolder, 5, 4, 3}}, L"line 5: three numbers are expected first");
    expectStoringSetsAside(damaged);
    EXPECT_EQ(namesIn(setAside()), std::vector<std::wstring>{L"rules.1.txt"});
    EXPECT_EQ(stored(L"D:\\Users"), (std::vector<Rule>{{L"D:\\Users"}})) << "what was good goes on";
}

TEST_F(DamageTest, WhoeverTakesErrorsIsToldOncePerChangeOfTheFile)
{
    const auto isTold = [] {
        stored(kFolder);
        EXPECT_TRUE(reported(L"is damaged")) << "the call itself tells each time";
        return std::wstring(lornixTakeErrors()).find(L"is damaged") != std::wstring::npos;
    };
    const std::string damaged = m_good.substr(0, m_good.find("checksum"));
    writeBytes(rulesFile(), damaged);
    lornixTakeErrors();
    EXPECT_TRUE(isTold());
    EXPECT_FALSE(isTold());
    namesOf(Folders(lornixKnownFolders()).get());
    EXPECT_STREQ(lornixTakeErrors(), L"") << "by another function";
    writeBytes(rulesFile(), damaged + "more\r\n");
    EXPECT_TRUE(isTold()) << "of another damage";
    EXPECT_FALSE(isTold());
    writeBytes(rulesFile(), m_good);
    EXPECT_EQ(stored(kFolder).size(), 2u);
    EXPECT_STREQ(lornixTakeErrors(), L"");
    writeBytes(rulesFile(), damaged);
    EXPECT_TRUE(isTold()) << "once more, after it was good";
}

TEST_F(DamageTest, LimitsThatCannotBeAreNeverHandedOut)
{
    for (const char* limits : {"0\t-1", "-1\t-5", "-9223372036854775808\t-9223372036854775808"}) {
        std::string damaged = m_good;
        damaged.replace(damaged.find("5\t4\t3"), 3, limits);
        expectRead(damaged, {{kFolder, 6, 5, 4, L"S-1-5-32-545"}}, L"line 4: its hard limit is 0 or less");
    }
    std::string damaged = m_good;
    damaged.replace(damaged.find("5\t4\t3"), 3, "3\t4");
    expectRead(damaged, {{kFolder, 6, 5, 4, L"S-1-5-32-545"}},
               L"line 4: its soft limit is above the hard one");
}

TEST_F(DamageTest, AChangeThatNoLineShowsIsTold)
{
    std::string damaged = m_good;
    damaged.replace(damaged.find("6\t5\t4"), 1, "7");
    expectRead(damaged, {{kFolder, 5, 4, 3}, {kFolder, 7, 5, 4, L"S-1-5-32-545"}},
               L"line 6: the checksum is another, so that something above was changed");
    const std::size_t line = m_good.find("5\t4\t3");
    expectRead(m_good.substr(0, line) + m_good.substr(m_good.find("6\t5\t4")),
               {{kFolder, 6, 5, 4, L"S-1-5-32-545"}}, L"line 5: the checksum is another");
    const std::size_t sum = m_good.find("checksum");
    expectRead(m_good.substr(0, sum) + "end\r\n", {{kFolder, 5, 4, 3}, {kFolder, 6, 5, 4, L"S-1-5-32-545"}},
               L"line 6: the checksum is missing");
}

TEST_F(DamageTest, WhoEditsTheFileLeavesTheChecksumOut)
{
    writeBytes(rulesFile(), kHead + std::string("7 6 5 anyone D:\\Projects\nchecksum -\nend\n"));
    EXPECT_EQ(stored(kFolder), (std::vector<Rule>{{kFolder, 7, 6, 5}}));
    EXPECT_STREQ(lornixLastError(), L"");
    store({kFolder}, {{kFolder, 9}});
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_F(DamageTest, ForeignFileIsLeftAloneByReading)
{
    for (const std::string& bytes :
         {std::string("PK\x03\x04 something else"), std::string(), std::string(5000, '\0'),
          std::string("lornix rules"), std::string("lornix rules one\r\nend\r\n")})
    {
        expectRead(bytes, {}, L"is not readable as such");
        expectStoringSetsAside(bytes);
    }
}

TEST_F(DamageTest, FileOfANewerVersionOrAnotherKindIsNeverTouched)
{
    const Rule tracked{kFolder, 5, 4, 3, L"S-1-5-32-545"};
    for (const std::string text :
         {"lornix rules 2\r\n7\t6\t5\tanyone\tD:\\Projects\r\nsomething new\r\nend\r\n",
          "lornix rules 17\r\n", "lornix notifications 1\r\nend\r\n", "lornix tracked-rules 1\r\nend\r\n",
          "lornix of-tomorrow 3"})
    {
        expectRead(text, {}, L"is of a newer version or of another kind. It is left alone.");
        EXPECT_EQ(storeNine(), 0);
        EXPECT_TRUE(reported(L"is of a newer version or of another kind"));
        EXPECT_TRUE(reported(L"Nothing was stored."));
        EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\NeverSeen"}).get(), chainOf({{L"D:\\NeverSeen"}}).get()),
                  0);
        storeKnownPaths(foldersOf({L"D:\\Users"}).get());
        EXPECT_TRUE(reported(L"is of a newer version or of another kind"));
        EXPECT_EQ(bytesOf(rulesFile()), text);
        writeBytes(data() / "tracked-rules.txt",
                   text == "lornix tracked-rules 1\r\nend\r\n" ? "lornix rules 1\n" : text);
        const std::string before = bytesOf(data() / "tracked-rules.txt");
        addToTrackList(chainOf({tracked}).get());
        EXPECT_TRUE(reported(L"is of a newer version or of another kind"));
        EXPECT_EQ(bytesOf(data() / "tracked-rules.txt"), before);
    }
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_F(DamageTest, TruncatedFileGivesTheRulesThatAreWhole)
{
    const std::size_t second = m_good.find("6\t5\t4");
    expectRead(m_good.substr(0, second + 3), {{kFolder, 5, 4, 3}}, L"the end is missing");
    // Half a path is a path too.
    const std::size_t half = m_good.find("D:\\Projects", second) + 6;
    expectRead(m_good.substr(0, half), {{kFolder, 5, 4, 3}}, L"line 5: it was cut off");
    EXPECT_TRUE(stored(L"D:\\Pro").empty());
    expectStoringSetsAside(m_good.substr(0, half));
}

TEST_F(DamageTest, OnlyTheFirstOfManyDamagedLinesAreTold)
{
    std::string damaged = m_good.substr(0, m_good.find("checksum"));
    for (int i = 0; i < 200000; ++i) {
        damaged += "nonsense\r\n";
    }
    writeBytes(rulesFile(), damaged + "checksum -\r\nend\r\n");
    EXPECT_EQ(stored(kFolder).size(), 2u);
    EXPECT_TRUE(reported(L"; and 199997 more"));
    EXPECT_LT(std::wstring(lornixLastError()).size(), 1000u);
}

TEST_F(DamageTest, WhatWasSetAsideBeforeIsNeverTouched)
{
    for (int i = 1; i <= 3; ++i) {
        expectRead("foreign " + std::to_string(i), {}, L"is not readable as such");
        EXPECT_EQ(storeNine(), 1);
        writeBytes(rulesFile(), m_good + "damaged " + std::to_string(i));
        EXPECT_EQ(stored(kFolder).size(), 2u);
        EXPECT_EQ(storeNine(), 1);
    }
    ASSERT_EQ(namesIn(setAside()).size(), 6u);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(bytesOf(setAside() / (L"rules." + std::to_wstring(2 * i - 1) + L".txt")),
                  "foreign " + std::to_string(i));
        EXPECT_EQ(bytesOf(setAside() / (L"rules." + std::to_wstring(2 * i) + L".txt")),
                  m_good + "damaged " + std::to_string(i));
    }
}

TEST_F(DamageTest, StoringTheSameOverADamagedFileMendsIt)
{
    const std::string damaged = m_good + "damage";
    writeBytes(rulesFile(), damaged);
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(),
                               chainOf({{kFolder, 5, 4, 3}, {kFolder, 6, 5, 4, L"S-1-5-32-545"}}).get()),
              1);
    EXPECT_EQ(bytesOf(rulesFile()), m_good);
    EXPECT_EQ(bytesOf(setAside() / "rules.1.txt"), damaged);
}

TEST_F(DamageTest, FileThatCannotBeSetAsideStaysAndIsNotOverwritten)
{
    writeBytes(setAside(), "in the way of the folder");
    const std::string damaged = m_good + "damage";
    expectRead(damaged, {{kFolder, 5, 4, 3}, {kFolder, 6, 5, 4, L"S-1-5-32-545"}}, L"is damaged");
    EXPECT_EQ(storeNine(), 0);
    EXPECT_TRUE(reported(L"cannot be set aside"));
    EXPECT_TRUE(reported(L"Nothing was stored."));
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(), nullptr), 0);
    EXPECT_EQ(bytesOf(rulesFile()), damaged);
}

TEST_F(DamageTest, FolderInThePlaceOfTheFile)
{
    std::filesystem::remove(rulesFile());
    std::filesystem::create_directories(rulesFile() / "something");
    EXPECT_TRUE(stored(kFolder).empty());
    EXPECT_TRUE(reported(L"cannot be read"));
    EXPECT_EQ(storeNine(), 0);
    EXPECT_TRUE(reported(L"Nothing was stored."));
    EXPECT_TRUE(std::filesystem::exists(rulesFile() / "something"));
}

TEST_F(DamageTest, LeftoversAndOtherFilesAreNoRules)
{
    const std::filesystem::path leftover = rulesFile().wstring() + L".lornix-new";
    writeBytes(leftover, "lornix rules 1\r\nfolder\tD:\\Proj");
    writeBytes(data() / "report.tmp", "another program's");
    EXPECT_EQ(stored(kFolder).size(), 2u);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_TRUE(std::filesystem::exists(leftover)) << "reading changes nothing";
    store({kFolder}, {{kFolder, 9}});
    EXPECT_FALSE(std::filesystem::exists(leftover));
    EXPECT_EQ(bytesOf(data() / "report.tmp"), "another program's");
}

TEST_F(DamageTest, KnownFoldersOfADamagedFile)
{
    const std::string damaged = kHead + std::string("folder D:\\Projects\n???\nchecksum -\nend\n");
    writeBytes(rulesFile(), damaged);
    EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()), std::vector<std::wstring>{kFolder});
    EXPECT_TRUE(reported(L"The file with the rules is damaged (line 3: three numbers are expected first)"));
    EXPECT_EQ(bytesOf(rulesFile()), damaged);
    storeKnownPaths(foldersOf({L"D:\\Users"}).get());
    EXPECT_EQ(bytesOf(setAside() / "rules.1.txt"), damaged);
    EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()), std::vector<std::wstring>{L"D:\\Users"});
}

TEST_F(DamageTest, TrackedRulesFile)
{
    writeBytes(data() / "tracked-rules.txt", "foreign");
    addToTrackList(chainOf({{kFolder, 5, 4, 3, L"S-1-5-32-545"}}).get());
    EXPECT_TRUE(reported(L"The file with the tracked rules is not readable as such"));
    EXPECT_EQ(bytesOf(setAside() / "tracked-rules.1.txt"), "foreign");
    EXPECT_NE(bytesOf(data() / "tracked-rules.txt").find("5\t4\t3\tS-1-5-32-545\tD:\\Projects"),
              std::string::npos);
}

/// One damage as disks and people do it.
std::string damagedAtRandom(std::string text, std::mt19937& random)
{
    const auto place = [&] {
        return random() % text.size();
    };
    const std::size_t at = place();
    const std::size_t size = std::min<std::size_t>(1 + random() % 600, text.size() - at);
    switch (random() % 6) {
    case 0: // one bit
        text[at] = static_cast<char>(text[at] ^ (1 << random() % 8));
        break;
    case 1: // cut off
        text.resize(at);
        break;
    case 2: // a block of zeros
        text.replace(at, size, size, '\0');
        break;
    case 3: // a block is gone
        text.erase(at, size);
        break;
    case 4: // a block is there twice
        text.insert(at, text.substr(place(), size));
        break;
    default: // a block of another place
        text.replace(at, size, text.substr(place(), size));
        break;
    }
    return text;
}

TEST_F(DamageTest, WhateverTheDamageNothingFalseIsHandedOutUntold)
{
    constexpr int kFiles = 1500;
    std::vector<std::wstring> folders;
    std::vector<Rule> rules;
    for (int i = 0; i < 10; ++i) {
        folders.push_back(L"D:\\Shares\\" + std::to_wstring(i));
        const auto more = rulesForMany(folders.back(), 1000 + i, 8);
        rules.insert(rules.end(), more.begin(), more.end());
    }
    store(folders, rules);
    const std::string whole = bytesOf(rulesFile());
    std::mt19937 random(4711);
    int told = 0;
    int same = 0;
    for (int file = 0; file < kFiles; ++file) {
        const std::string damaged = damagedAtRandom(whole, random);
        writeBytes(rulesFile(), damaged);
        ASSERT_EQ(lornixSetDataFolder(data().c_str()), 1); // as a process that starts
        std::vector<Rule> read;
        bool isTold = false;
        for (const std::wstring& folder : folders) {
            const auto more = stored(folder);
            read.insert(read.end(), more.begin(), more.end());
            isTold = isTold || *lornixLastError() != L'\0';
        }
        EXPECT_TRUE(isTold || read == rules) << "file " << file;
        EXPECT_EQ(bytesOf(rulesFile()), damaged);
        told += isTold ? 1 : 0;
        same += read == rules ? 1 : 0;
        ASSERT_FALSE(HasFailure());
    }
    std::printf("%d damaged files: %d told, %d with all rules, none false and untold\n", kFiles, told, same);
    EXPECT_TRUE(namesIn(setAside()).empty());
}

} // namespace
