// What others store meanwhile, and what could not be read, is not replaced by whoever has not seen it.
#include "held_files.h"

#include "tests/support/import_patch.h"

#include <algorithm>

namespace {

using namespace store_test;
using Names = std::vector<std::wstring>;

const std::wstring kShared = L"D:\\Projects";

class OtherWriterTest : public StoreTest {
protected:
    /// Asks for rules while another program holds their file.
    static void failToRead()
    {
        const HeldFiles held;
        EXPECT_EQ(getQuotaList(kShared.c_str()), nullptr);
    }

    /// Refused, and nothing is changed.
    void expectRefused(const std::vector<Rule>& rules, const std::wstring& reason)
    {
        const std::string before = bytesOf(rulesFile());
        EXPECT_EQ(lornixStoreRules(foldersOf({kShared}).get(), chainOf(rules).get()), 0);
        EXPECT_TRUE(reported(L"\"" + kShared + L"\" " + reason));
        EXPECT_TRUE(reported(L"Nothing was stored."));
        EXPECT_EQ(bytesOf(rulesFile()), before);
        EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()), Names{kShared});
    }

    static void appendAndStore(PathList* known, const wchar_t* folder)
    {
        const Folders list(appendToPaths(known, folder));
        storeKnownPaths(list.get());
    }

    /// Shows a limit of 8 to this process, and then writes one of 7 behind its back.
    void seeOneRuleWhileAnotherComes()
    {
        store({kShared}, {{kShared, 7}});
        const std::string theirs = bytesOf(rulesFile());
        store({kShared}, {{kShared, 8}});
        EXPECT_EQ(stored(kShared).size(), 1u);
        writeBytes(rulesFile(), theirs);
    }
};

TEST_F(OtherWriterTest, RulesThatChangedMeanwhileAreNotReplaced)
{
    seeOneRuleWhileAnotherComes();
    expectRefused({{kShared, 9}}, L"were changed by somebody else");
    expectRefused({}, L"were changed by somebody else");
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 7}}));
    store({kShared}, {{kShared, 9}});  // now that they were seen
    store({kShared}, {{kShared, 10}}); // and what was stored is seen too
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 10}}));
}

TEST_F(OtherWriterTest, RulesThatCameMeanwhileAreNotReplaced)
{
    store({kShared}, {{kShared, 7}});
    const std::string theirs = bytesOf(rulesFile());
    const auto file = rulesFile();
    store({kShared}, {});
    EXPECT_TRUE(stored(kShared).empty());
    writeBytes(file, theirs);
    EXPECT_EQ(lornixStoreRules(foldersOf({kShared}).get(), chainOf({{kShared, 9}}).get()), 0);
    EXPECT_TRUE(reported(L"were changed by somebody else"));
    EXPECT_EQ(bytesOf(file), theirs);
}

TEST_F(OtherWriterTest, TheSameRulesAgainAreNoChange)
{
    seeOneRuleWhileAnotherComes();
    store({kShared}, {{kShared, 7}}); // what is there already
    store({kShared}, {{kShared, 6}});
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 6}}));
}

TEST_F(OtherWriterTest, RulesThatCouldNotBeReadAreNotReplaced)
{
    store({kShared}, {{kShared, 7}});
    failToRead();
    EXPECT_TRUE(reported(L"cannot be read"));
    expectRefused({}, L"could not be read and are not replaced unseen");
    expectRefused({{kShared, 9}}, L"could not be read and are not replaced unseen");
    EXPECT_EQ(stored(kShared).size(), 1u);
    store({kShared}, {});
    EXPECT_TRUE(stored(kShared).empty());
}

TEST_F(OtherWriterTest, OneFolderThatIsRefusedKeepsTheOthersAsTheyAre)
{
    const std::wstring other = L"D:\\Other";
    store({kShared, other}, {{kShared, 7}, {other, 1}});
    const auto file = rulesFile();
    const std::string theirs = bytesOf(file);
    store({kShared}, {{kShared, 8}});
    EXPECT_EQ(stored(kShared).size(), 1u);
    writeBytes(file, theirs);
    EXPECT_EQ(lornixStoreRules(foldersOf({other, kShared}).get(), chainOf({{other, 2}, {kShared, 9}}).get()),
              0);
    EXPECT_EQ(stored(other), (std::vector<Rule>{{other, 1}}));
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 7}}));
}

TEST_F(OtherWriterTest, WhatIsGoodInADamagedFileIsSeen)
{
    store({kShared}, {{kShared, 7}, {kShared, 8, 1, 0, L"S-1-5-32-545"}});
    std::string text = bytesOf(rulesFile());
    writeBytes(rulesFile(), text.replace(text.find("8\t"), 1, "x"));
    EXPECT_EQ(stored(kShared).size(), 1u);
    EXPECT_TRUE(reported(L"is damaged"));
    EXPECT_EQ(lornixStoreRules(foldersOf({kShared}).get(), chainOf({{kShared, 9}}).get()), 1);
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 9}}));
}

TEST_F(OtherWriterTest, ForeignRulesAreSeenAsNone)
{
    store({kShared}, {{kShared, 7}});
    writeBytes(rulesFile(), "a shopping list");
    EXPECT_TRUE(stored(kShared).empty());
    EXPECT_EQ(lornixStoreRules(foldersOf({kShared}).get(), chainOf({{kShared, 9}}).get()), 1);
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 9}}));
    EXPECT_EQ(bytesOf(setAside() / namesIn(setAside()).at(0)), "a shopping list");
}

TEST_F(OtherWriterTest, EveryFolderInConflictIsTold)
{
    const std::vector<std::wstring> folders{L"D:\\A", L"D:\\B", L"D:\\C"};
    store(folders, {{L"D:\\A", 7}, {L"D:\\B", 7}, {L"D:\\C", 7}});
    const std::string theirs = bytesOf(rulesFile());
    store(folders, {{L"D:\\A", 8}, {L"D:\\B", 8}, {L"D:\\C", 7}});
    for (const std::wstring& folder : folders) {
        EXPECT_EQ(stored(folder).size(), 1u);
    }
    writeBytes(rulesFile(), theirs);
    EXPECT_EQ(lornixStoreRules(foldersOf(folders).get(),
                               chainOf({{L"D:\\A", 9}, {L"D:\\B", 9}, {L"D:\\C", 9}}).get()),
              0);
    EXPECT_TRUE(reported(L"The rules of \"D:\\A\" were changed by somebody else"));
    EXPECT_TRUE(reported(L"The rules of \"D:\\B\" were changed by somebody else"));
    EXPECT_FALSE(reported(L"\"D:\\C\""));
    EXPECT_EQ(bytesOf(rulesFile()), theirs);
    store({L"D:\\C"}, {{L"D:\\C", 9}}); // nobody touched that one
}

FILETIME written{}; // when the store wrote last, by the clock of the disk

BOOL WINAPI timedWrite(HANDLE file, const void* bytes, DWORD size, DWORD* done, OVERLAPPED* overlapped)
{
    const BOOL isDone = WriteFile(file, bytes, size, done, overlapped);
    GetFileTime(file, nullptr, nullptr, &written);
    return isDone;
}

TEST_F(OtherWriterTest, AChangeOfOneByteIsSeenWhileTheClockOfTheDiskStandsStill)
{
    const ImportPatch writing(storeModule(), "WriteFile", &timedWrite);
    ASSERT_EQ(writing.count(), 1);
    std::vector<Rule> rules = rulesForMany(kShared, 7, 10);
    store({kShared}, rules);
    const std::size_t limit = bytesOf(rulesFile()).find("\r\n7") + 2;
    const HANDLE file =
        CreateFileW(rulesFile().c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD done = 0;
    SetFilePointer(file, static_cast<LONG>(limit), nullptr, FILE_BEGIN);
    EXPECT_TRUE(WriteFile(file, "8", 1, &done, nullptr) && SetFileTime(file, nullptr, nullptr, &written));
    CloseHandle(file);
    rules.front().hardLimit = 8;
    EXPECT_EQ(stored(kShared), rules);
    EXPECT_TRUE(reported(L"the checksum is another"));
}

FILETIME timeOf(const std::filesystem::path& file)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    EXPECT_TRUE(GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data));
    return data.ftLastWriteTime;
}

TEST_F(OtherWriterTest, AnotherFileOfTheSameTimeAndSizeInItsPlaceIsRead)
{
    store({kShared}, {{kShared, 7}});
    const std::string theirs = bytesOf(rulesFile());
    store({kShared}, {{kShared, 8}});
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 8}}));
    const FILETIME time = timeOf(rulesFile());
    ASSERT_EQ(std::filesystem::file_size(rulesFile()), theirs.size());
    const auto another = data() / "another";
    writeBytes(another, theirs);
    const HANDLE file = CreateFileW(another.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(SetFileTime(file, nullptr, nullptr, &time));
    CloseHandle(file);
    std::filesystem::rename(another, rulesFile());
    const FILETIME now = timeOf(rulesFile());
    ASSERT_EQ(CompareFileTime(&now, &time), 0);
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 7}}));
}

std::size_t bytesRead = 0;

BOOL WINAPI countedRead(HANDLE file, void* bytes, DWORD size, DWORD* read, OVERLAPPED* overlapped)
{
    bytesRead += size;
    return ReadFile(file, bytes, size, read, overlapped);
}

TEST_F(OtherWriterTest, WhatWasStoredHereIsNotReadAgainUnlessItChanged)
{
    store({kShared}, rulesForMany(kShared, 7, 1000));
    const ImportPatch reading(storeModule(), "ReadFile", &countedRead);
    ASSERT_EQ(reading.count(), 1);
    bytesRead = 0;
    EXPECT_EQ(stored(kShared).size(), 1000u);
    store({kShared}, rulesForMany(kShared, 8, 1000));
    EXPECT_LT(bytesRead, 1000u);
    const std::string bytes = bytesOf(rulesFile());
    writeBytes(rulesFile(), bytes); // by somebody else, as far as the store knows
    EXPECT_EQ(stored(kShared).size(), 1000u);
    EXPECT_GE(bytesRead, bytes.size());
}

TEST_F(OtherWriterTest, WhoAsksForNothingReplacesWhatIsThere)
{
    store({kShared}, {{kShared, 7}});
    writeBytes(rulesFile(), "a shopping list");
    EXPECT_EQ(lornixStoreRules(foldersOf({kShared}).get(), chainOf({{kShared, 9}}).get()), 1);
    EXPECT_EQ(stored(kShared), (std::vector<Rule>{{kShared, 9}}));
}

TEST_F(OtherWriterTest, KnownFoldersThatCouldNotBeReadAreKept)
{
    storeKnownPaths(foldersOf({L"C:\\a", L"C:\\b"}).get());
    PathList* known = nullptr;
    {
        const HeldFiles held;
        known = getKnownPaths();
    }
    EXPECT_EQ(known, nullptr);
    EXPECT_TRUE(reported(L"cannot be read"));
    appendAndStore(known, L"C:\\c");
    EXPECT_EQ(namesOf(Folders(getKnownPaths()).get()), (Names{L"C:\\a", L"C:\\b", L"C:\\c"}));
}

TEST_F(OtherWriterTest, KnownFoldersThatCameMeanwhileAreKept)
{
    storeKnownPaths(foldersOf({L"C:\\a", L"C:\\b", L"C:\\theirs"}).get());
    const std::string theirs = bytesOf(rulesFile());
    storeKnownPaths(foldersOf({L"C:\\a", L"C:\\b"}).get());
    PathList* const known = getKnownPaths();
    EXPECT_EQ(namesOf(known), (Names{L"C:\\a", L"C:\\b"}));
    writeBytes(rulesFile(), theirs);
    appendAndStore(known, L"C:\\c");
    EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()),
              (Names{L"C:\\a", L"C:\\b", L"C:\\theirs", L"C:\\c"}));

    // Whoever was given a, b and took b out, and knows nothing of theirs, takes b out.
    storeKnownPaths(foldersOf({L"C:\\a", L"C:\\c"}).get());
    EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()), (Names{L"C:\\a", L"C:\\theirs", L"C:\\c"}));
}

TEST_F(OtherWriterTest, KnownFoldersThatWereGivenAreReplaced)
{
    storeKnownPaths(foldersOf({L"C:\\a", L"C:\\b"}).get());
    const Folders known(getKnownPaths());
    storeKnownPaths(foldersOf({L"C:\\c", L"C:\\b"}).get());
    EXPECT_EQ(namesOf(Folders(getKnownPaths()).get()), (Names{L"C:\\c", L"C:\\b"}));
    storeKnownPaths(nullptr);
    EXPECT_EQ(getKnownPaths(), nullptr);
}

TEST_F(OtherWriterTest, AListThatChangedMeanwhileIsNotReplaced)
{
    const auto file = data() / L"excludes.txt";
    const auto add = [](const wchar_t* text) {
        addToExcludes(_wcsdup(text));
    };
    loadExcludes();
    add(L"C:\\theirs");
    storeExcludes();
    const std::string theirs = bytesOf(file);
    add(L"C:\\more");
    storeExcludes(); // twice in a row is no change by somebody else
    EXPECT_STREQ(lornixLastError(), L"");
    loadExcludes();
    writeBytes(file, theirs);
    add(L"C:\\ours");
    storeExcludes();
    EXPECT_TRUE(reported(L"was changed by somebody else since it was loaded"));
    EXPECT_EQ(bytesOf(file), theirs);
    loadExcludes();
    add(L"C:\\ours");
    storeExcludes();
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_STREQ(getExcludes(0), L"C:\\theirs");
    EXPECT_STREQ(getExcludes(1), L"C:\\ours");
    freeExcludes();
}

TEST_F(OtherWriterTest, FailuresAreKeptUntilTheyAreTaken)
{
    lornixTakeErrors();
    EXPECT_STREQ(lornixTakeErrors(), L"");
    store({kShared}, {{kShared, 7}});
    EXPECT_EQ(getQuotaList(L""), nullptr);
    const std::wstring first = lornixLastError();
    EXPECT_EQ(getQuotaList(L""), nullptr);
    failToRead();
    const std::wstring second = lornixLastError();
    EXPECT_EQ(stored(kShared).size(), 1u);
    EXPECT_STREQ(lornixLastError(), L"");
    EXPECT_EQ(lornixTakeErrors(), first + L"\n" + second);
    EXPECT_STREQ(lornixTakeErrors(), L"");
}

TEST_F(OtherWriterTest, NoMoreFailuresAreKeptThanAPersonReads)
{
    lornixTakeErrors();
    for (int i = 0; i < 150; ++i) {
        EXPECT_EQ(lornixSetDataFolder((L"no" + std::to_wstring(i)).c_str()), 0);
    }
    const std::wstring text = lornixTakeErrors();
    EXPECT_EQ(std::count(text.begin(), text.end(), L'\n'), 100);
    EXPECT_NE(text.find(L"\"no99\""), std::wstring::npos);
    EXPECT_EQ(text.find(L"\"no100\""), std::wstring::npos);
    EXPECT_NE(text.find(L"\nMore could not be done"), std::wstring::npos);
}

} // namespace
