// A store that is killed loses nothing that was stored.
#include "child.h"
#include "generations.h"

#include <algorithm>
#include <random>
#include <sstream>

namespace {

using namespace store_test;

using KillTest = StoreTest;

/// Expects each folder to hold one generation whole: one of the two given.
void expectOneOf(std::int64_t before, std::int64_t after)
{
    for (const std::wstring& folder : generationFolders()) {
        const std::int64_t found = storedGeneration(folder);
        const bool isBefore = found == (hasRules(folder, before) ? before : 0);
        const bool isAfter = found == (hasRules(folder, after) ? after : 0);
        EXPECT_TRUE(isBefore || isAfter) << testing::PrintToString(folder) << " has generation " << found
                                         << ", not " << before << " or " << after;
    }
}

/// Expects rules to be in known folders only: else nobody would look for them.
void expectRulesAreKnown()
{
    const auto known = namesOf(Folders(lornixKnownFolders()).get());
    EXPECT_STREQ(lornixLastError(), L"");
    for (const std::wstring& folder : generationFolders()) {
        if (storedGeneration(folder) != 0) {
            EXPECT_NE(std::find(known.begin(), known.end(), folder), known.end())
                << testing::PrintToString(folder);
        }
    }
}

std::int64_t lastNoted(const std::filesystem::path& notes)
{
    std::istringstream lines(std::filesystem::exists(notes) ? bytesOf(notes) : "");
    std::int64_t last = 0;
    for (std::string line; std::getline(lines, line);) {
        last = std::stoll(line);
    }
    return last;
}

std::size_t leftovers(const std::filesystem::path& folder)
{
    const auto names = namesIn(folder);
    return static_cast<std::size_t>(std::count_if(
        names.begin(), names.end(), [](const std::wstring& name) { return name.ends_with(L".lornix-new"); }));
}

TEST_F(KillTest, AtRandomMoments)
{
    constexpr int kRuns = 40;
    const std::filesystem::path notes = root() / "notes";
    std::mt19937 random(std::random_device{}());
    std::int64_t last = 0;
    for (int run = 0; run < kRuns; ++run) {
        {
            Child child(L"store-for-ever", {data().wstring(), notes.wstring(), std::to_wstring(last + 1)});
            while (child.isRunning() && lastNoted(notes) == last) {
                Sleep(1);
            }
            Sleep(random() % 40); // some moment of the generations that follow
            ASSERT_TRUE(child.isRunning()) << child.wait();
            child.kill();
        }
        last = lastNoted(notes);
        expectOneOf(last, last + 1);
        expectRulesAreKnown();
        ASSERT_FALSE(HasFailure()) << "run " << run;
    }
    EXPECT_GE(last, kRuns);
    EXPECT_TRUE(namesIn(setAside()).empty());

    store(generationFolders(), generation(last + 2));
    expectOneOf(last + 2, last + 2);
    EXPECT_EQ(leftovers(rulesFolder()) + leftovers(data()), 0u);
}

TEST_F(KillTest, BeforeAndBehindEveryCallThatChangesFiles)
{
    // From a generation with rules in the second folder to one without, and back: all kinds of changes.
    for (const std::int64_t after : {std::int64_t{3}, std::int64_t{4}}) {
        const std::int64_t before = after - 1;
        DWORD code = kEndedItself;
        int calls = 0;
        std::size_t found = 0;
        while (code == kEndedItself) {
            store(generationFolders(), generation(before));
            EXPECT_EQ(leftovers(rulesFolder()) + leftovers(data()), 0u);
            ++calls;
            code = Child(L"end-in-the-middle",
                         {data().wstring(), std::to_wstring(calls), std::to_wstring(after)})
                       .wait();
            expectOneOf(before, after);
            expectRulesAreKnown();
            found += leftovers(rulesFolder()) + leftovers(data());
            ASSERT_FALSE(HasFailure()) << "call " << calls << ", exit code " << code;
        }
        EXPECT_EQ(code, 0u);
        expectOneOf(after, after);
        EXPECT_GT(calls, 20);
        EXPECT_GT(found, 0u) << "no kill left anything behind: were they made at all?";
    }
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_F(KillTest, WhileADamagedFileIsSetAside)
{
    const std::string good = "lornix rules 1\nfolder D:\\Projects\n5 4 3 anyone\n";
    DWORD code = kEndedItself;
    for (int calls = 1; code == kEndedItself; ++calls) {
        std::filesystem::remove_all(data());
        ASSERT_EQ(lornixSetDataFolder(data().c_str()), 1);
        store({L"D:\\Projects"}, {{L"D:\\Projects"}});
        const std::filesystem::path file = theRulesFile();
        writeBytes(file, good + "damage\nend\n");

        code = Child(L"end-in-the-middle", {data().wstring(), std::to_wstring(calls), L"load"}).wait();

        EXPECT_EQ(stored(L"D:\\Projects"), (std::vector<Rule>{{L"D:\\Projects", 5, 4, 3}}));
        const auto aside = namesIn(setAside());
        EXPECT_TRUE(std::any_of(
            aside.begin(), aside.end(),
            [&](const auto& name) { return bytesOf(setAside() / name) == good + "damage\nend\n"; }))
            << "call " << calls;
        EXPECT_EQ(stored(L"D:\\Projects").size(), 1u);
        EXPECT_STREQ(lornixLastError(), L"");
        ASSERT_FALSE(HasFailure()) << "call " << calls;
    }
    EXPECT_EQ(code, 0u);
}

using ConcurrencyTest = StoreTest;

TEST_F(ConcurrencyTest, ProcessesThatStoreAtOnceDoNotDisturbEachOther)
{
    constexpr int kCount = 60;
    const std::vector<std::wstring> folders{L"D:\\Shared", L"D:\\Shared", L"D:\\First", L"D:\\Second"};
    std::vector<std::unique_ptr<Child>> children;
    for (const std::wstring& folder : folders) {
        children.push_back(std::make_unique<Child>(
            L"store-often", std::vector<std::wstring>{data().wstring(), folder, std::to_wstring(kCount)}));
    }
    const auto isRunning = [](const auto& child) {
        return child->isRunning();
    };
    int reads = 0;
    while (std::any_of(children.begin(), children.end(), isRunning)) {
        for (const std::wstring& folder : folders) {
            // One whole generation, whenever one looks.
            const std::vector<Rule> rules = stored(folder);
            EXPECT_STREQ(lornixLastError(), L"");
            if (!rules.empty()) {
                const std::int64_t number = rules.front().hardLimit;
                EXPECT_EQ(rules,
                          std::vector<Rule>(static_cast<std::size_t>(number % 5) + 1, Rule{folder, number}));
                ++reads;
            }
            ASSERT_FALSE(HasFailure());
        }
    }
    for (const auto& child : children) {
        EXPECT_EQ(child->wait(), 0u);
    }
    for (const std::wstring& folder : folders) {
        EXPECT_EQ(stored(folder), std::vector<Rule>(kCount % 5 + 1, Rule{folder, kCount}));
    }
    auto known = namesOf(Folders(lornixKnownFolders()).get());
    std::sort(known.begin(), known.end());
    EXPECT_EQ(known, (std::vector<std::wstring>{L"D:\\First", L"D:\\Second", L"D:\\Shared"}));
    EXPECT_GT(reads, 0);
    EXPECT_TRUE(namesIn(setAside()).empty());
}

} // namespace
