#include "store_test.h"

#include "tree.h"

#include "lornix/text/framed_text.h"

#include <sddl.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace store_test {

std::ostream& operator<<(std::ostream& out, const Rule& rule)
{
    const auto narrow = [](const std::wstring& text) {
        return testing::PrintToString(text);
    };
    return out << "{" << narrow(rule.path) << " hard " << rule.hardLimit << " soft " << rule.softLimit
               << " in use " << rule.inUse << " sid " << narrow(rule.sid) << "}";
}

Block<void> sidOf(const std::wstring& text)
{
    PSID sid = nullptr;
    if (!ConvertStringSidToSidW(text.c_str(), &sid)) {
        ADD_FAILURE() << "no SID: " << testing::PrintToString(text);
        return nullptr;
    }
    Block<void> copy(sidDup(sid));
    LocalFree(sid);
    return copy;
}

std::wstring textOf(const void* sid)
{
    wchar_t text[256] = L"?";
    getTextualSidW(sid, text, static_cast<int>(std::size(text)));
    return text;
}

Chain chainOf(const std::vector<Rule>& rules)
{
    Chain first;
    for (auto rule = rules.rbegin(); rule != rules.rend(); ++rule) {
        auto* record = static_cast<QuotaRule*>(calloc(1, sizeof(QuotaRule)));
        record->type = rule->sid.empty() ? QUOTA_RULE_FOR_ANYONE : QUOTA_RULE_FOR_ACCOUNT;
        record->hardLimit = rule->hardLimit;
        record->softLimit = rule->softLimit;
        record->inUse = rule->inUse;
        record->path = _wcsdup(rule->path.c_str());
        record->sid = rule->sid.empty() ? nullptr : sidOf(rule->sid).release();
        if (first) {
            first->prev = record;
        }
        record->next = first.release();
        first.reset(record);
    }
    return first;
}

Folders foldersOf(const std::vector<std::wstring>& folders)
{
    PathList* list = nullptr;
    for (const std::wstring& folder : folders) {
        list = appendToPaths(list, folder.c_str());
    }
    return Folders(list);
}

std::vector<Rule> rulesOf(const QuotaRule* chain)
{
    std::vector<Rule> rules;
    const QuotaRule* before = nullptr;
    for (const QuotaRule* rule = chain; rule != nullptr; before = rule, rule = rule->next) {
        EXPECT_EQ(rule->prev, before);
        EXPECT_EQ(rule->type, rule->sid == nullptr ? QUOTA_RULE_FOR_ANYONE : QUOTA_RULE_FOR_ACCOUNT);
        rules.push_back({rule->path, rule->hardLimit, rule->softLimit, rule->inUse,
                         rule->sid == nullptr ? L"" : textOf(rule->sid)});
    }
    return rules;
}

std::vector<std::wstring> namesOf(const PathList* list)
{
    std::vector<std::wstring> names;
    if (list != nullptr) {
        wchar_t* const* paths = list->paths;
        names.assign(paths, paths + list->count);
    }
    return names;
}

std::vector<std::wstring> textsOf(const SidList* list)
{
    std::vector<std::wstring> texts;
    if (list != nullptr) {
        void* const* sids = list->sids;
        std::transform(sids, sids + list->count, std::back_inserter(texts), textOf);
    }
    return texts;
}

std::vector<Rule> stored(const std::wstring& folder)
{
    return rulesOf(Chain(lornixLoadRules(folder.c_str())).get());
}

void store(const std::vector<std::wstring>& folders, const std::vector<Rule>& rules)
{
    EXPECT_EQ(lornixStoreRules(foldersOf(folders).get(), chainOf(rules).get()), 1);
    EXPECT_STREQ(lornixLastError(), L"");
}

std::string bytesOf(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << file;
    return {std::istreambuf_iterator<char>(in), {}};
}

void writeBytes(const std::filesystem::path& file, std::string_view bytes)
{
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(out.good()) << file;
}

std::string checked(const std::string& lines)
{
    std::string text = lines + "checksum\t";
    lornix::appendHex(text, lornix::checksumOf(lines));
    return text + "\r\nend\r\n";
}

std::vector<Rule> rulesForMany(const std::wstring& folder, std::int64_t hardLimit, std::size_t count)
{
    std::vector<Rule> rules(count, Rule{folder, hardLimit});
    for (std::size_t i = 0; i < count; ++i) {
        rules[i].sid = L"S-1-5-21-1-2-3-" + std::to_wstring(i);
    }
    return rules;
}

std::vector<std::wstring> namesIn(const std::filesystem::path& folder)
{
    std::vector<std::wstring> names;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        names.push_back(entry.path().filename().wstring());
    }
    std::sort(names.begin(), names.end());
    return names;
}

testing::AssertionResult reported(const std::wstring& part)
{
    const std::wstring text = lornixLastError();
    if (text.find(part) != std::wstring::npos) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << testing::PrintToString(part) << " is not in " << testing::PrintToString(text);
}

void StoreTest::SetUp()
{
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(info->test_suite_name()) + "." + info->name() + "." +
                       std::to_string(GetCurrentProcessId());
    std::replace(name.begin(), name.end(), '/', '.'); // of a test with a parameter
    m_root = std::filesystem::current_path() / "scratch" / name;
    EXPECT_TRUE(removeTree(m_root.wstring()));
    std::filesystem::create_directories(m_root);
    ASSERT_EQ(lornixSetDataFolder(data().c_str()), 1) << testing::PrintToString(lornixLastError());
    ASSERT_STREQ(lornixLastError(), L"");
}

void StoreTest::TearDown()
{
    lornixSetDataFolder(nullptr);
    if (!HasFailure()) {
        EXPECT_TRUE(removeTree(m_root.wstring()));
    }
}

} // namespace store_test
