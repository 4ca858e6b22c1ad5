#include "generations.h"

#include <algorithm>

namespace store_test {
namespace {

std::size_t ruleCount(std::size_t folder, std::int64_t number)
{
    // The second folder is empty every third time.
    if (folder == 1 && number % 3 == 0) {
        return 0;
    }
    return 1 + (static_cast<std::size_t>(number) * 7 + folder * 3) % 40;
}

std::vector<Rule> rulesOf(std::size_t folder, std::int64_t number)
{
    const std::wstring path = generationFolders()[folder];
    std::vector<Rule> rules;
    for (std::size_t i = 0; i < ruleCount(folder, number); ++i) {
        rules.push_back(
            {path, number, static_cast<std::int64_t>(i), -1, L"S-1-5-21-1-2-3-" + std::to_wstring(i)});
    }
    return rules;
}

} // namespace

std::vector<std::wstring> generationFolders()
{
    return {L"D:\\Projects", L"D:\\Users", L"D:\\Media"};
}

std::vector<Rule> generation(std::int64_t number)
{
    std::vector<Rule> all;
    for (std::size_t folder = 0; folder < generationFolders().size(); ++folder) {
        const auto rules = rulesOf(folder, number);
        all.insert(all.end(), rules.begin(), rules.end());
    }
    return all;
}

std::int64_t storedGeneration(const std::wstring& folder)
{
    const auto folders = generationFolders();
    const auto index =
        static_cast<std::size_t>(std::find(folders.begin(), folders.end(), folder) - folders.begin());
    const std::vector<Rule> rules = stored(folder);
    EXPECT_STREQ(lornixLastError(), L"");
    if (rules.empty()) {
        return 0;
    }
    const std::int64_t number = rules.front().hardLimit;
    EXPECT_EQ(rules, rulesOf(index, number));
    return number;
}

bool hasRules(const std::wstring& folder, std::int64_t number)
{
    const auto folders = generationFolders();
    const auto index =
        static_cast<std::size_t>(std::find(folders.begin(), folders.end(), folder) - folders.begin());
    return ruleCount(index, number) != 0;
}

} // namespace store_test
