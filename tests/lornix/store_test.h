// What every test of the store stands on: a data folder of its own, rules by the handful, files as bytes.
#pragma once

#include "lornix_host.h"
#include "store/lornix.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace store_test {

/// A rule in values, for making records and for comparing.
struct Rule {
    std::wstring path;
    std::int64_t hardLimit = 1048576;
    std::int64_t softLimit = 1;
    std::int64_t inUse = 12;
    std::wstring sid = {}; ///< S-1-...; empty: anyone

    bool operator==(const Rule&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Rule& rule);

struct FreeRules {
    void operator()(QuotaRule* rules) const { lornixFreeRules(rules); }
};
using Chain = std::unique_ptr<QuotaRule, FreeRules>;

struct FreeFolders {
    void operator()(PathList* list) const { lornixFreeFolders(list); }
};
using Folders = std::unique_ptr<PathList, FreeFolders>;

struct FreeSids {
    void operator()(SidList* list) const { freeSidList(list); }
};
using Sids = std::unique_ptr<SidList, FreeSids>;

struct FreeBlock {
    void operator()(void* block) const { free(block); }
};
template <class Type>
using Block = std::unique_ptr<Type, FreeBlock>;

/// The library that is tested, for replacing what it calls.
inline HMODULE storeModule()
{
    return GetModuleHandleW(L"lornix.dll");
}

/// A SID from its text, by the platform.
Block<void> sidOf(const std::wstring& text);
std::wstring textOf(const void* sid);

Chain chainOf(const std::vector<Rule>& rules);
Folders foldersOf(const std::vector<std::wstring>& folders);

/// The rules of a chain. Checks on the way that it is linked both ways.
std::vector<Rule> rulesOf(const QuotaRule* chain);
std::vector<std::wstring> namesOf(const PathList* list);
std::vector<std::wstring> textsOf(const SidList* list);

/// What is stored for a folder.
std::vector<Rule> stored(const std::wstring& folder);

/// Stores rules for folders; expects that it works and that nothing is reported.
void store(const std::vector<std::wstring>& folders, const std::vector<Rule>& rules);

std::string bytesOf(const std::filesystem::path& file);
void writeBytes(const std::filesystem::path& file, std::string_view bytes);

/// The text of a file that the store takes for its own: the lines given, with the checksum and the end.
std::string checked(const std::string& lines);

/// Rules of one folder that differ by their accounts alone.
std::vector<Rule> rulesForMany(const std::wstring& folder, std::int64_t hardLimit, std::size_t count);

/// Names of what is in a folder, sorted; none when there is no such folder.
std::vector<std::wstring> namesIn(const std::filesystem::path& folder);

/// Whether the reported text holds a part.
testing::AssertionResult reported(const std::wstring& part);

/// A test with a fresh data folder and a fresh folder for trees, under the working directory.
class StoreTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    const std::filesystem::path& root() const { return m_root; }
    std::filesystem::path data() const { return m_root / L"data"; }
    std::filesystem::path rulesFile() const { return data() / L"rules.txt"; }
    std::filesystem::path setAside() const { return data() / L"set-aside"; }

private:
    std::filesystem::path m_root;
};

} // namespace store_test
