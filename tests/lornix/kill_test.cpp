// A store that is killed loses nothing that was stored.
#include "child.h"
#include "generations.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <sstream>

namespace {

using namespace store_test;

using KillTest = StoreTest;

/// @return whether the stored rules are those of one generation, and rules in known folders only: else nobody would
/// look for them.
bool isWhole(std::int64_t number, std::size_t folders)
{
    std::vector<std::wstring> withRules;
    for (std::size_t folder = 0; folder < folders; ++folder) {
        const bool has = hasRules(folder, number) && number != 0;
        if (storedGeneration(folder) != (has ? number : 0)) {
            return false;
        }
        if (has) {
            withRules.push_back(generationFolders(folders)[folder]);
        }
    }
    auto known = namesOf(Folders(lornixKnownFolders()).get());
    std::sort(known.begin(), known.end());
    std::sort(withRules.begin(), withRules.end());
    return known == withRules;
}

/// Expects all folders to hold one generation: one of the two given.
void expectOneOf(std::int64_t before, std::int64_t after, std::size_t folders = kFewFolders)
{
    EXPECT_TRUE(isWhole(before, folders) || isWhole(after, folders))
        << "half done between the generations " << before << " and " << after;
}

/// How many kills: some in a run of all tests, more by hand with STORE_KILLS=1000.
int killCount(int usual)
{
    wchar_t text[16];
    const DWORD length = GetEnvironmentVariableW(L"STORE_KILLS", text, 16);
    return length == 0 || length >= 16 ? usual : std::stoi(text);
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

class RandomKillTest : public KillTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(RandomKillTest, LeavesAllOfAChangeOrNothing)
{
    const std::size_t folders = GetParam();
    const int runs = killCount(40);
    const std::filesystem::path notes = root() / "notes";
    std::mt19937 random(std::random_device{}());
    std::int64_t last = 0;
    int behind = 0;
    for (int run = 0; run < runs; ++run) {
        {
            Child child(L"store-for-ever", {data().wstring(), notes.wstring(), std::to_wstring(last + 1),
                                            std::to_wstring(folders)});
            while (child.isRunning() && lastNoted(notes) == last) {
                Sleep(1);
            }
            Sleep(random() % 40); // some moment of the generations that follow
            ASSERT_TRUE(child.isRunning()) << child.wait();
            child.kill();
        }
        last = lastNoted(notes);
        expectOneOf(last, last + 1, folders);
        behind += leftovers(data()) == 0 ? 0 : 1;
        ASSERT_FALSE(HasFailure()) << "run " << run;
    }
    std::printf("%d kills, %d of them while a file was written, 0 half done\n", runs, behind);
    EXPECT_GE(last, runs);
    EXPECT_TRUE(namesIn(setAside()).empty());

    store(generationFolders(folders), generation(last + 2, folders));
    expectOneOf(last + 2, last + 2, folders);
    EXPECT_EQ(leftovers(data()), 0u);
}

INSTANTIATE_TEST_SUITE_P(Folders, RandomKillTest, testing::Values(kFewFolders, 200));

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
            EXPECT_EQ(leftovers(data()), 0u);
            ++calls;
            code = Child(L"end-in-the-middle",
                         {data().wstring(), std::to_wstring(calls), std::to_wstring(after)})
                       .wait();
            expectOneOf(before, after);
            found += leftovers(data());
            ASSERT_FALSE(HasFailure()) << "call " << calls << ", exit code " << code;
        }
        EXPECT_EQ(code, 0u);
        expectOneOf(after, after);
        EXPECT_GT(calls, 8);
        EXPECT_GT(found, 0u) << "no kill left anything behind: were they made at all?";
    }
    EXPECT_TRUE(namesIn(setAside()).empty());
}

TEST_F(KillTest, WhileADamagedFileIsSetAside)
{
    const std::string damaged =
        "lornix rules 1\nfolder D:\\Elsewhere\n5 4 3 anyone D:\\Elsewhere\ndamage\nend\n";
    DWORD code = kEndedItself;
    for (int calls = 1; code == kEndedItself; ++calls) {
        std::filesystem::remove_all(data());
        ASSERT_EQ(lornixSetDataFolder(data().c_str()), 1);
        writeBytes(rulesFile(), damaged);

        code = Child(L"end-in-the-middle", {data().wstring(), std::to_wstring(calls), L"2"}).wait();

        const auto aside = namesIn(setAside());
        const bool isKept = std::any_of(aside.begin(), aside.end(), [&](const auto& name) {
            return bytesOf(setAside() / name) == damaged;
        });
        EXPECT_TRUE(bytesOf(rulesFile()) == damaged || isKept);
        EXPECT_EQ(stored(L"D:\\Elsewhere"), (std::vector<Rule>{{L"D:\\Elsewhere", 5, 4, 3}}));
        if (bytesOf(rulesFile()) != damaged) {
            EXPECT_EQ(storedGeneration(0), 2);
        }
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
                EXPECT_EQ(rules, rulesForMany(folder, number, static_cast<std::size_t>(number % 5) + 1));
                ++reads;
            }
            ASSERT_FALSE(HasFailure());
        }
        Sleep(5); // a file that somebody always has open cannot be replaced
    }
    for (const auto& child : children) {
        EXPECT_EQ(child->wait(), 0u);
    }
    for (const std::wstring& folder : folders) {
        EXPECT_EQ(stored(folder), rulesForMany(folder, kCount, kCount % 5 + 1));
    }
    auto known = namesOf(Folders(lornixKnownFolders()).get());
    std::sort(known.begin(), known.end());
    EXPECT_EQ(known, (std::vector<std::wstring>{L"D:\\First", L"D:\\Second", L"D:\\Shared"}));
    EXPECT_GT(reads, 0);
    EXPECT_TRUE(namesIn(setAside()).empty());
}

} // namespace
