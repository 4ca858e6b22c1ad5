#include "store_test.h"

#include <algorithm>

namespace {

using namespace store_test;

using RulesTest = StoreTest;

const std::wstring kAnna = L"S-1-5-21-1004336348-1177238915-682003330-1105";
const std::wstring kUsers = L"S-1-5-32-545";

TEST_F(RulesTest, FolderWithoutRulesHasNone)
{
    EXPECT_EQ(getQuotaList(L"D:\\Projects"), nullptr);
    EXPECT_STREQ(lornixLastError(), L"");
}

TEST_F(RulesTest, ReadBackAsStoredAndInTheirOrder)
{
    const std::vector<Rule> rules{
        {L"D:\\Projects", 104857600, 99614720, 52428800, kAnna},
        {L"D:\\Projects", 1, -1, -1, L""},
        {L"D:\\Projects", INT64_MAX, INT64_MIN, INT64_MAX, kUsers},
    };
    store({L"D:\\Projects"}, rules);
    EXPECT_EQ(stored(L"D:\\Projects"), rules);
    EXPECT_EQ(rulesOf(Chain(getQuotaList(L"D:\\Projects")).get()), rules);
}

TEST_F(RulesTest, SpellingOfEveryPathIsKept)
{
    const std::vector<Rule> rules{{L"D:/PROJECTS/Alpha"},
                                  {L"d:\\projects\\alpha", 2, 1, 0, kAnna},
                                  {L"D:\\Projects/Alpha\\", 2, 1, 0, kUsers}};
    store({L"D:\\Projects\\Alpha"}, rules);
    EXPECT_EQ(stored(L"d:/Projects/ALPHA"), rules);
}

TEST_F(RulesTest, FolderIsFoundInAnySpelling)
{
    const std::wstring folder = L"D:\\B\u00FCro\\\u0416\u0443\u0440\u043D\u0430\u043B\\\u03A3";
    store({folder}, {{folder}});
    EXPECT_EQ(stored(L"d:/b\u00DCRO/\u0436\u0423\u0420\u041D\u0410\u041B/\u03C3/").size(), 1u);
    EXPECT_TRUE(stored(L"D:\\Buro").empty());
}

TEST_F(RulesTest, AnyTextMakesTheRoundTrip)
{
    const std::wstring odd[] = {
        L"D:\\tab\there",
        L"D:\\line\nfeed\r",
        L"D:\\100% %u0041",
        L" D:\\blank at both ends ",
        L"D:\\\xD800 high",
        L"D:\\low \xDC00",
        L"D:\\\xDC00\xD800 swapped",
        L"D:\\\xD83D\xDCBE disk",
        L"D:\\\xFFFE\xFFFF\xFEFF",
        L"D:\\\x2028\x2029\x85",
        L"# D:\\",
        L"end",
        L"folder\tD:\\",
    };
    for (const std::wstring& path : odd) {
        const std::vector<Rule> rules{{path}, {path, 77, 66, 55, kAnna}};
        store({path}, rules);
        EXPECT_EQ(stored(path), rules);
    }
    std::vector<std::wstring> known(std::begin(odd), std::end(odd));
    EXPECT_EQ(namesOf(Folders(lornixKnownFolders()).get()), known);
}

TEST_F(RulesTest, PathsOfAnyLength)
{
    const std::wstring path = L"D:\\" + std::wstring(32000, L'x');
    store({path}, {{path}});
    EXPECT_EQ(stored(path), std::vector<Rule>{{path}});
}

TEST_F(RulesTest, StoringReplacesTheListedFoldersOnly)
{
    store({L"D:\\A", L"D:\\B"}, {{L"D:\\A"}, {L"D:\\B"}});
    store({L"D:\\A"}, rulesForMany(L"D:\\A", 5, 2));
    EXPECT_EQ(stored(L"D:\\A"), rulesForMany(L"D:\\A", 5, 2));
    EXPECT_EQ(stored(L"D:\\B"), std::vector<Rule>{{L"D:\\B"}});
}

TEST_F(RulesTest, RulesOfManyFoldersMayBeMixedInTheChain)
{
    store({L"D:\\A", L"D:\\B", L"d:/a"}, {{L"D:\\A", 1},
                                          {L"D:\\B", 2},
                                          {L"D:/a", 3, 1, 0, kAnna},
                                          {L"D:\\B", 4, 1, 0, kAnna},
                                          {L"D:\\A", 5, 1, 0, kUsers}});
    EXPECT_EQ(stored(L"D:\\A"),
              (std::vector<Rule>{{L"D:\\A", 1}, {L"D:/a", 3, 1, 0, kAnna}, {L"D:\\A", 5, 1, 0, kUsers}}));
    EXPECT_EQ(stored(L"D:\\B"), (std::vector<Rule>{{L"D:\\B", 2}, {L"D:\\B", 4, 1, 0, kAnna}}));
}

TEST_F(RulesTest, FolderWithoutRulesInTheChainEndsUpWithNone)
{
    store({L"D:\\A"}, {{L"D:\\A"}});
    store({L"D:\\A"}, {});
    EXPECT_TRUE(stored(L"D:\\A").empty());
    EXPECT_EQ(bytesOf(rulesFile()), checked("lornix rules 1\r\n"
                                            "# hard limit, soft limit, in use (bytes); account; folder\r\n"));
}

TEST_F(RulesTest, KnownFoldersFollow)
{
    store({L"D:\\A", L"D:\\B", L"D:\\C"}, {{L"D:\\A"}, {L"D:\\C"}});
    EXPECT_EQ(namesOf(Folders(getKnownPaths()).get()), (std::vector<std::wstring>{L"D:\\A", L"D:\\C"}));
    store({L"d:/a", L"D:\\B"}, {{L"D:\\B"}});
    EXPECT_EQ(namesOf(Folders(getKnownPaths()).get()), (std::vector<std::wstring>{L"D:\\C", L"D:\\B"}));
    store({L"D:\\B", L"D:\\C"}, {});
    EXPECT_EQ(namesOf(Folders(getKnownPaths()).get()), std::vector<std::wstring>{});
}

TEST_F(RulesTest, NothingChangesWhenARuleCannotBeStored)
{
    store({L"D:\\A"}, {{L"D:\\A"}});
    const auto attempt = [](const std::vector<Rule>& rules) {
        return lornixStoreRules(foldersOf({L"D:\\A", L"D:\\B"}).get(), chainOf(rules).get());
    };
    EXPECT_EQ(attempt({{L"D:\\B"}, {L"D:\\Elsewhere"}}), 0);
    EXPECT_TRUE(reported(L"rule 2, on \"D:\\Elsewhere\""));
    EXPECT_EQ(attempt({{L"D:\\B"}, {L"D:\\A", 0}}), 0);
    EXPECT_TRUE(reported(L"its hard limit is 0 or less"));
    EXPECT_EQ(attempt({{L"D:\\A", -5}}), 0);
    EXPECT_TRUE(reported(L"its hard limit is 0 or less"));
    EXPECT_EQ(stored(L"D:\\A"), std::vector<Rule>{{L"D:\\A"}});
    EXPECT_TRUE(stored(L"D:\\B").empty());
    EXPECT_EQ(namesOf(Folders(getKnownPaths()).get()), std::vector<std::wstring>{L"D:\\A"});
}

TEST_F(RulesTest, BrokenRecordsAreRefused)
{
    Chain chain = chainOf({{L"D:\\A"}});
    std::uint8_t invalid[16] = {9};
    chain->sid = invalid;
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chain.get()), 0);
    EXPECT_TRUE(reported(L"its account is no valid security identifier"));
    chain->sid = nullptr;
    free(std::exchange(chain->path, nullptr));
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chain.get()), 0);
    EXPECT_TRUE(reported(L"it names no folder"));
}

TEST_F(RulesTest, MissingArgumentsAreRefused)
{
    EXPECT_EQ(lornixStoreRules(nullptr, nullptr), 0);
    EXPECT_STRNE(lornixLastError(), L"");
    EXPECT_EQ(getQuotaList(nullptr), nullptr);
    EXPECT_STRNE(lornixLastError(), L"");
    EXPECT_EQ(getQuotaList(L""), nullptr);
    EXPECT_STRNE(lornixLastError(), L"");
    wchar_t empty[] = L"";
    PathList nameless{1, {empty}};
    EXPECT_EQ(lornixStoreRules(&nameless, nullptr), 0);
    EXPECT_TRUE(reported(L"folder 1 of the list has no name"));
    PathList none{1, {nullptr}};
    EXPECT_EQ(lornixStoreRules(&none, nullptr), 0);
    PathList negative{-3, {nullptr}};
    EXPECT_EQ(lornixStoreRules(&negative, nullptr), 1);
    EXPECT_STREQ(lornixLastError(), L"");
    lornixFreeRules(nullptr);
    lornixFreeFolders(nullptr);
}

TEST_F(RulesTest, ReportsAreThoseOfTheLastCall)
{
    EXPECT_EQ(lornixStoreRules(nullptr, nullptr), 0);
    ASSERT_STRNE(lornixLastError(), L"");
    wchar_t name[100];
    getAccountBySidW(nullptr, name, 100);
    ODS("a line\n");
    lornixDataFolder();
    EXPECT_STRNE(lornixLastError(), L"") << "looking up names leaves it alone";
    EXPECT_EQ(getQuotaList(L"D:\\A"), nullptr);
    EXPECT_STREQ(lornixLastError(), L"");
}

TEST_F(RulesTest, TheFileIsReadable)
{
    store({L"D:\\B\u00FCro\\Team A", L"E:\\"}, {{L"D:\\B\u00FCro\\Team A", 2048, 1024, -1, kUsers},
                                                {L"E:\\", 9, 8, 7},
                                                {L"d:/b\u00FCro/team a", 5, 4, 3}});
    EXPECT_EQ(bytesOf(rulesFile()), checked("lornix rules 1\r\n"
                                            "# hard limit, soft limit, in use (bytes); account; folder\r\n"
                                            "folder\tD:\\B\xC3\xBCro\\Team A\r\n"
                                            "2048\t1024\t-1\tS-1-5-32-545\tD:\\B\xC3\xBCro\\Team A\r\n"
                                            "5\t4\t3\tanyone\td:/b\xC3\xBCro/team a\r\n"
                                            "folder\tE:\\\r\n"
                                            "9\t8\t7\tanyone\tE:\\\r\n"));
    EXPECT_EQ(namesIn(data()), (std::vector<std::wstring>{L"lornix.lock", L"rules.txt"}));
}

TEST_F(RulesTest, ASoftLimitAboveTheHardOneIsRefused)
{
    store({L"D:\\A"}, {{L"D:\\A", 5, 5}});
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(),
                               chainOf({{L"D:\\A", 9, 9}, {L"D:\\A", 9, 10, 0, kUsers}}).get()),
              0);
    EXPECT_TRUE(
        reported(L"rule 2, on \"D:\\A\", cannot be kept, because its soft limit is above the hard one"));
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 5, 5}}));
}

TEST_F(RulesTest, TwoRulesOfOneFolderForOneAccountAreRefused)
{
    const std::vector<std::wstring> folders{L"D:\\A", L"D:\\B"};
    const auto attempt = [&](const std::vector<Rule>& rules) {
        return lornixStoreRules(foldersOf(folders).get(), chainOf(rules).get());
    };
    EXPECT_EQ(attempt({{L"D:\\A", 5, 1, 0, kAnna},
                       {L"D:\\B", 5, 1, 0, kAnna}, // another folder
                       {L"D:\\A", 5, 1, 0, kUsers},
                       {L"d:/a/", 6, 1, 0, kAnna}}),
              0);
    EXPECT_TRUE(reported(L"rules 1 and 4, on \"D:\\A\", cannot be kept, because both are for one account"));
    EXPECT_EQ(attempt({{L"D:\\B"}, {L"D:\\A"}, {L"D:\\B", 7}}), 0);
    EXPECT_TRUE(reported(L"rules 1 and 3, on \"D:\\B\", cannot be kept, because both are for one account"));
    EXPECT_FALSE(std::filesystem::exists(rulesFile()));
}

TEST_F(RulesTest, StoringTheSameAgainLeavesTheFilesAlone)
{
    const std::vector<Rule> rules{{L"D:\\A"}, {L"D:\\A", 9, 8, 7, kAnna}};
    store({L"D:\\A"}, rules);
    const auto before = std::filesystem::last_write_time(rulesFile());
    std::filesystem::last_write_time(rulesFile(), before - std::chrono::hours(5));
    store({L"D:\\A"}, rules);
    EXPECT_EQ(std::filesystem::last_write_time(rulesFile()), before - std::chrono::hours(5));
}

TEST_F(RulesTest, RecordsForAHostOfAnotherRuntime)
{
    const Block<void> anna = sidOf(kAnna);
    Chain chain(lornixNewRule(L"D:\\A", anna.get()));
    ASSERT_NE(chain, nullptr);
    EXPECT_EQ(chain->type, QUOTA_RULE_FOR_ACCOUNT);
    EXPECT_NE(chain->sid, anna.get());
    chain->hardLimit = 5;
    QuotaRule* const second = lornixNewRule(L"D:\\A", nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->type, QUOTA_RULE_FOR_ANYONE);
    EXPECT_EQ(second->hardLimit + second->softLimit + second->inUse, 0);
    second->hardLimit = 6;
    second->prev = chain.get();
    chain->next = second;
    EXPECT_EQ(lornixStoreRules(foldersOf({L"D:\\A"}).get(), chain.get()), 1);
    EXPECT_EQ(stored(L"D:\\A"), (std::vector<Rule>{{L"D:\\A", 5, 0, 0, kAnna}, {L"D:\\A", 6, 0, 0}}));

    std::uint8_t invalid[16] = {9};
    EXPECT_EQ(lornixNewRule(L"D:\\A", invalid), nullptr);
    EXPECT_STRNE(lornixLastError(), L"");
    EXPECT_EQ(lornixNewRule(nullptr, nullptr), nullptr);
    lornixFree(getSidByNameW(L"Administrators"));
    lornixFree(nullptr);
}

TEST_F(RulesTest, ManyRulesInOneFolder)
{
    constexpr std::size_t kCount = 100000;
    std::vector<Rule> rules;
    for (std::size_t i = 0; i < kCount; ++i) {
        rules.push_back({L"D:\\Projects", static_cast<std::int64_t>(i) + 1, static_cast<std::int64_t>(i), -1,
                         L"S-1-5-21-1-2-3-" + std::to_wstring(i)});
    }
    store({L"D:\\Projects"}, rules);
    EXPECT_TRUE(stored(L"D:\\Projects") == rules);
}

TEST_F(RulesTest, ManyFolders)
{
    constexpr std::size_t kCount = 1000;
    std::vector<std::wstring> folders;
    std::vector<Rule> rules;
    for (std::size_t i = 0; i < kCount; ++i) {
        folders.push_back(L"D:\\Users\\" + std::to_wstring(i));
        rules.push_back({folders.back(), static_cast<std::int64_t>(i) + 1});
    }
    store(folders, rules);
    EXPECT_EQ(namesOf(Folders(getKnownPaths()).get()), folders);
    for (const std::size_t i : {std::size_t{0}, kCount / 2, kCount - 1}) {
        EXPECT_EQ(stored(folders[i]), std::vector<Rule>{rules[i]});
    }
}

} // namespace
