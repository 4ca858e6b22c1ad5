// Damaged and foreign files: reported, set aside, never overwritten or deleted; the rest goes on.
#include "store_test.h"

namespace {

using namespace store_test;

class DamageTest : public StoreTest {
protected:
    static constexpr const wchar_t* kFolder = L"D:\\Projects";

    void SetUp() override
    {
        StoreTest::SetUp();
        store({kFolder}, {{kFolder, 5, 4, 3}, {kFolder, 6, 5, 4, L"S-1-5-32-545"}});
        file_ = theRulesFile();
        good_ = bytesOf(file_);
    }

    /// Expects what was in the file to be set aside, whole, as the only such file.
    void expectAside(const std::string& bytes)
    {
        const auto names = namesIn(setAside());
        ASSERT_EQ(names.size(), 1u);
        EXPECT_EQ(names.front(), file_.stem().wstring() + L".1.txt");
        EXPECT_EQ(bytesOf(setAside() / names.front()), bytes);
        EXPECT_TRUE(reported((setAside() / names.front()).wstring()));
    }

    std::filesystem::path file_;
    std::string good_;
};

TEST_F(DamageTest, DamagedLineIsLeftOutAndTheRestGoesOn)
{
    std::string damaged = good_;
    damaged.replace(damaged.find("6\t5\t4"), 1, "x");
    writeBytes(file_, damaged);
    EXPECT_EQ(stored(kFolder), (std::vector<Rule>{{kFolder, 5, 4, 3}}));
    EXPECT_TRUE(reported(L"line 5: three numbers are expected first"));
    EXPECT_TRUE(reported(L"\"D:\\Projects\""));
    expectAside(damaged);

    EXPECT_EQ(stored(kFolder), (std::vector<Rule>{{kFolder, 5, 4, 3}}));
    EXPECT_STREQ(lornixLastError(), L"") << "told once";
}

TEST_F(DamageTest, RuleWithoutAHardLimitIsNeverHandedOut)
{
    for (const char* limit : {"0", "-1", "-9223372036854775808"}) {
        std::filesystem::remove_all(setAside());
        std::string damaged = good_;
        damaged.replace(damaged.find("5\t4\t3"), 1, limit);
        writeBytes(file_, damaged);
        EXPECT_EQ(rulesOf(Chain(getQuotaList(kFolder)).get()),
                  (std::vector<Rule>{{kFolder, 6, 5, 4, L"S-1-5-32-545"}}));
        EXPECT_TRUE(reported(L"line 4: its hard limit is 0 or less"));
        expectAside(damaged);
    }
}

TEST_F(DamageTest, ForeignFileIsSetAside)
{
    for (const std::string& bytes :
         {std::string("PK\x03\x04 something else"), std::string(), std::string(5000, '\0'),
          std::string("lornix rules 2\r\nfolder\tD:\\Projects\r\nend\r\n")})
    {
        std::filesystem::remove_all(setAside());
        writeBytes(file_, bytes);
        EXPECT_TRUE(stored(kFolder).empty());
        EXPECT_TRUE(reported(L"is not readable as such"));
        expectAside(bytes);
        EXPECT_FALSE(std::filesystem::exists(file_));
        EXPECT_TRUE(stored(kFolder).empty());
        EXPECT_STREQ(lornixLastError(), L"");
    }
    store({kFolder}, {{kFolder, 9}});
    EXPECT_EQ(stored(kFolder), (std::vector<Rule>{{kFolder, 9}}));
}

TEST_F(DamageTest, FileOfAnotherFolderIsForeign)
{
    store({L"D:\\Users"}, {{L"D:\\Users", 7}});
    std::filesystem::path other;
    for (const auto& name : namesIn(rulesFolder())) {
        other = name != file_.filename() ? rulesFolder() / name : other;
    }
    writeBytes(file_, bytesOf(other));
    EXPECT_TRUE(stored(kFolder).empty());
    EXPECT_TRUE(reported(L"is not readable as such"));
    expectAside(bytesOf(other));
    EXPECT_EQ(stored(L"D:\\Users"), (std::vector<Rule>{{L"D:\\Users", 7}}));
}

TEST_F(DamageTest, TruncatedFileGivesTheRulesThatAreWhole)
{
    const std::string cut = good_.substr(0, good_.find("S-1-5-32-5"));
    writeBytes(file_, cut);
    EXPECT_EQ(stored(kFolder), (std::vector<Rule>{{kFolder, 5, 4, 3}}));
    EXPECT_TRUE(reported(L"the end is missing"));
    expectAside(cut);
}

TEST_F(DamageTest, OnlyTheFirstOfManyDamagedLinesAreTold)
{
    std::string damaged = good_.substr(0, good_.find("end\r\n"));
    for (int i = 0; i < 100; ++i) {
        damaged += "nonsense\r\n";
    }
    writeBytes(file_, damaged + "end\r\n");
    EXPECT_EQ(stored(kFolder).size(), 2u);
    EXPECT_TRUE(reported(L"; and 97 more"));
    EXPECT_LT(std::wstring(lornixLastError()).size(), 1000u);
}

TEST_F(DamageTest, WhatWasSetAsideBeforeIsNeverTouched)
{
    const std::wstring name = file_.stem().wstring();
    for (int i = 1; i <= 3; ++i) {
        writeBytes(file_, "foreign " + std::to_string(i));
        EXPECT_TRUE(stored(kFolder).empty());
        writeBytes(file_, good_ + "damaged " + std::to_string(i));
        EXPECT_EQ(stored(kFolder).size(), 2u);
    }
    ASSERT_EQ(namesIn(setAside()).size(), 6u);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(bytesOf(setAside() / (name + L'.' + std::to_wstring(2 * i - 1) + L".txt")),
                  "foreign " + std::to_string(i));
        EXPECT_EQ(bytesOf(setAside() / (name + L'.' + std::to_wstring(2 * i) + L".txt")),
                  good_ + "damaged " + std::to_string(i));
    }
}

TEST_F(DamageTest, StoringOverADamagedFileSetsItAsideFirst)
{
    const std::string damaged = good_ + "damage";
    writeBytes(file_, damaged);
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(), chainOf({{kFolder, 9}}).get()), 1);
    expectAside(damaged);
    EXPECT_EQ(stored(kFolder), (std::vector<Rule>{{kFolder, 9}}));
}

TEST_F(DamageTest, DroppingTheRulesOfADamagedFileSetsItAsideFirst)
{
    writeBytes(file_, "foreign");
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(), nullptr), 1);
    expectAside("foreign");
    EXPECT_TRUE(stored(kFolder).empty());
    EXPECT_TRUE(namesIn(rulesFolder()).empty());
}

TEST_F(DamageTest, FileThatCannotBeSetAsideStaysAndIsNotOverwritten)
{
    writeBytes(setAside(), "in the way of the folder");
    const std::string damaged = good_ + "damage";
    writeBytes(file_, damaged);
    EXPECT_EQ(stored(kFolder).size(), 2u) << "what can be read is handed out all the same";
    EXPECT_TRUE(reported(L"cannot be set aside"));
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(), chainOf({{kFolder, 9}}).get()), 0);
    EXPECT_TRUE(reported(L"cannot be set aside"));
    EXPECT_TRUE(reported(L"Nothing was stored."));
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(), nullptr), 0);
    EXPECT_EQ(bytesOf(file_), damaged);
    EXPECT_EQ(namesIn(rulesFolder()).size(), 1u);
}

TEST_F(DamageTest, FolderInThePlaceOfTheFile)
{
    std::filesystem::remove(file_);
    std::filesystem::create_directories(file_ / "something");
    EXPECT_TRUE(stored(kFolder).empty());
    EXPECT_TRUE(reported(L"cannot be read"));
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(), chainOf({{kFolder, 9}}).get()), 0);
    EXPECT_TRUE(reported(L"Nothing was stored."));
    EXPECT_TRUE(std::filesystem::exists(file_ / "something"));
}

TEST_F(DamageTest, LeftoversAndOtherFilesAreNoRules)
{
    const std::filesystem::path leftover = file_.wstring() + L".lornix-new";
    writeBytes(leftover, "lornix rules 1\r\nfolder\tD:\\Proj");
    writeBytes(data() / "known-folders.txt.lornix-new", "half");
    writeBytes(rulesFolder() / "readme.txt", "notes of an administrator");
    writeBytes(data() / "report.tmp", "another program's");
    EXPECT_EQ(stored(kFolder).size(), 2u);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_TRUE(std::filesystem::exists(leftover)) << "reading changes nothing";
    store({kFolder}, {{kFolder, 9}});
    EXPECT_FALSE(std::filesystem::exists(leftover));
    EXPECT_FALSE(std::filesystem::exists(data() / "known-folders.txt.lornix-new"));
    EXPECT_EQ(bytesOf(rulesFolder() / "readme.txt"), "notes of an administrator");
    EXPECT_EQ(bytesOf(data() / "report.tmp"), "another program's");
}

TEST_F(DamageTest, KnownFoldersFile)
{
    const std::filesystem::path known = data() / "known-folders.txt";
    const std::string damaged = "lornix known-folders 1\nfolder D:\\Projects\n???\nend\n";
    writeBytes(known, damaged);
    EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()), std::vector<std::wstring>{kFolder});
    EXPECT_TRUE(reported(L"The file with the known folders is damaged (line 3: a folder is expected)"));
    EXPECT_EQ(bytesOf(setAside() / "known-folders.1.txt"), damaged);

    writeBytes(known, "foreign");
    EXPECT_EQ(lornixKnownFolders(), nullptr);
    EXPECT_TRUE(reported(L"is not readable as such"));
    EXPECT_EQ(bytesOf(setAside() / "known-folders.2.txt"), "foreign");

    writeBytes(known, "foreign again");
    EXPECT_EQ(lornixStoreRules(foldersOf({kFolder}).get(), chainOf({{kFolder, 9}}).get()), 1);
    EXPECT_EQ(bytesOf(setAside() / "known-folders.3.txt"), "foreign again");
    EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()), std::vector<std::wstring>{kFolder});

    writeBytes(known, "and again");
    storeKnownPaths(foldersOf({L"D:\\Users"}).get());
    EXPECT_EQ(bytesOf(setAside() / "known-folders.4.txt"), "and again");
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

} // namespace
