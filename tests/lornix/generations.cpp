#include "generations.h"

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

std::wstring folderName(std::size_t folder)
{
    constexpr const wchar_t* kNames[] = {L"D:\\Projects", L"D:\\Users", L"D:\\Media"};
    return folder < std::size(kNames) ? kNames[folder] : L"D:\\Shares\\" + std::to_wstring(folder);
}

std::vector<Rule> rulesOf(std::size_t folder, std::int64_t number)
{
    return rulesForMany(folderName(folder), number, ruleCount(folder, number));
}

} // namespace

std::vector<std::wstring> generationFolders(std::size_t count)
{
    std::vector<std::wstring> folders;
    for (std::size_t folder = 0; folder < count; ++folder) {
        folders.push_back(folderName(folder));
    }
    return folders;
}

std::vector<Rule> generation(std::int64_t number, std::size_t folders)
{
    std::vector<Rule> all;
    for (std::size_t folder = 0; folder < folders; ++folder) {
        const auto rules = rulesOf(folder, number);
        all.insert(all.end(), rules.begin(), rules.end());
    }
    return all;
}

std::int64_t storedGeneration(std::size_t folder)
{
    const std::vector<Rule> rules = stored(folderName(folder));
    EXPECT_STREQ(lornixLastError(), L"");
    if (rules.empty()) {
        return 0;
    }
    const std::int64_t number = rules.front().hardLimit;
    EXPECT_EQ(rules, rulesOf(folder, number));
    return number;
}

bool hasRules(std::size_t folder, std::int64_t number)
{
    return ruleCount(folder, number) != 0;
}

} // namespace store_test
