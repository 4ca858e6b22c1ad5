// Storing in a store of many folders, twenty rules to a folder, all of them changed or those of one folder: the store,
// beside the bare minimum, which writes as many bytes into a new file, flushes it and puts it in the place of the old
// one, and beside the straightforward way, which does so for a file of each folder. Then reading the folders one by
// one, as a panel that starts, beside opening the file and reading as many bytes of it for each.
//   store_bench FOLDER [--sizes=1000,10000,100000] [--rounds=N] [--no-row-by-row] [--times]
// FOLDER is on the disk to be measured. Exit code 1 when something could not be stored.
#include "bench/support/account_sid.h"
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "bench/support/time.h"
#include "lornix_host.h"
#include "store/lornix.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kRulesOfAFolder = 20;

using Chain = std::unique_ptr<QuotaRule, decltype(&lornixFreeRules)>;
using Folders = std::unique_ptr<PathList, decltype(&lornixFreeFolders)>;

std::wstring folderOf(int rule)
{
    return L"D:\\Shares\\Department " + std::to_wstring(rule / kRulesOfAFolder);
}

Folders foldersOf(int rules)
{
    Folders folders(nullptr, lornixFreeFolders);
    for (int rule = 0; rule < rules; rule += kRulesOfAFolder) {
        folders.reset(appendToPaths(folders.release(), folderOf(rule).c_str()));
    }
    return folders;
}

Chain chainOf(int rules)
{
    Chain first(nullptr, lornixFreeRules);
    QuotaRule* last = nullptr;
    for (int i = 0; i < rules; ++i) {
        const AccountSid account(static_cast<DWORD>(1000 + i));
        QuotaRule* rule = lornixNewRule(folderOf(i).c_str(), &account);
        rule->hardLimit = 524288000;
        rule->softLimit = 419430400;
        rule->inUse = 28540096 + i;
        rule->prev = last;
        if (last == nullptr) {
            first.reset(rule);
        } else {
            last->next = rule;
        }
        last = rule;
    }
    return first;
}

bool writeThrough(const std::wstring& file, const std::string& bytes)
{
    const std::wstring temporary = file + L".new";
    HANDLE out = CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    const bool isWritten =
        WriteFile(out, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
        FlushFileBuffers(out);
    CloseHandle(out);
    return isWritten &&
           MoveFileExW(temporary.c_str(), file.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

std::string bytesOf(const std::wstring& file)
{
    const HANDLE in =
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    std::string bytes(GetFileSize(in, nullptr), '\0');
    DWORD read = 0;
    ReadFile(in, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(in);
    return bytes;
}

bool readPart(const std::wstring& file, std::size_t part, std::string& bytes)
{
    const HANDLE in = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
    OVERLAPPED start{};
    start.Offset = static_cast<DWORD>(part * bytes.size());
    DWORD read = 0;
    ReadFile(in, bytes.data(), static_cast<DWORD>(bytes.size()), &read, &start);
    CloseHandle(in);
    return read == bytes.size();
}

/// Compares reading each folder.
bool measureReading(const std::wstring& file, int rules, int rounds, std::vector<Comparison>& comparisons)
{
    const Folders folders = foldersOf(rules);
    wchar_t* const* names = folders->paths;
    const auto count = static_cast<std::size_t>(folders->count);
    std::string bytes(bytesOf(file).size() / count, '\0');
    Tally read;
    Tally bare;
    bool isDone = true;
    for (int round = -1; round < rounds; ++round) { // the first one warms up
        const Time ours = timed([&] {
            for (std::size_t i = 0; i < count; ++i) {
                isDone = isDone && Chain(lornixLoadRules(names[i]), lornixFreeRules) != nullptr;
            }
        });
        const Time theirs = timed([&] {
            for (std::size_t i = 0; i < count; ++i) {
                isDone = isDone && readPart(file, i, bytes);
            }
        });
        if (round >= 0) {
            read.add(ours);
            bare.add(theirs);
        }
    }
    comparisons.push_back({"Rules of each folder read", rules, read, bare, std::nullopt, Clock::kWall});
    return isDone;
}

bool measure(const std::wstring& data, int rules, const Options& options,
             std::vector<Comparison>& comparisons)
{
    const Folders folders = foldersOf(rules);
    const Chain chain = chainOf(rules);
    const Folders singleFolder = foldersOf(1);
    const Chain single = chainOf(1);
    Tally all;
    Tally one;
    Tally bare;
    Tally slow;
    bool isDone = true;
    const int rounds = options.rounds != 0 ? options.rounds : 7;
    for (int round = -1; round < rounds; ++round) { // the first one warms up
        // As between two changes of a person: what was just written is read once more, and the disk has gone to rest.
        const auto wait = [] {
            Sleep(300);
        };
        const auto store = [&](const PathList* of, QuotaRule* first) {
            wait();
            // A host makes the rules that it hands over anew each time, so that they are as near to the processor as
            // the bytes that the bare side has just read.
            for (QuotaRule* rule = first; rule != nullptr; rule = rule->next) {
                rule->hardLimit += 1024;
                isDone = isDone && IsValidSid(rule->sid) && *rule->path != L'\0';
            }
            return timed([&] { isDone = isDone && lornixStoreRules(of, first) != 0; });
        };
        const Time allStored = store(folders.get(), chain.get());
        const Time oneStored = store(singleFolder.get(), single.get());
        wait();
        const std::string bytes = bytesOf(data + L"\\rules.txt");
        const Time written = timed([&] { isDone = isDone && writeThrough(data + L"\\bare", bytes); });
        if (!isDone) {
            std::fprintf(stderr, "Storing failed: %ls\n", lornixLastError());
            return false;
        }
        if (round < 0) {
            continue;
        }
        all.add(allStored);
        one.add(oneStored);
        bare.add(written);
        if (options.rowByRow && round == 0) {
            const std::size_t part = bytes.size() * kRulesOfAFolder / static_cast<std::size_t>(rules);
            slow.add(timed([&] {
                for (int rule = 0; rule < rules && isDone; rule += kRulesOfAFolder) {
                    isDone = writeThrough(data + L"\\part" + std::to_wstring(rule), bytes.substr(0, part));
                }
            }));
            for (int rule = 0; rule < rules; rule += kRulesOfAFolder) {
                DeleteFileW((data + L"\\part" + std::to_wstring(rule)).c_str());
            }
        }
    }
    comparisons.push_back({"All rules changed and stored", rules, all, bare,
                           options.rowByRow ? std::optional(slow) : std::nullopt, Clock::kWall});
    comparisons.push_back(
        {"Rules of one folder changed and stored", rules, one, bare, std::nullopt, Clock::kWall});
    return measureReading(data + L"\\rules.txt", rules, rounds, comparisons);
}

} // namespace

int main(int count, char** arguments)
{
    const std::string folder = count < 2 ? "" : arguments[1];
    const std::wstring data(folder.begin(), folder.end());
    Options options{.sizes = {1000, 10000, 100000}};
    if (count < 2 || !readOptions(count - 1, arguments + 1, 1000, 1000000, options) ||
        lornixSetDataFolder(data.c_str()) == 0)
    {
        return 2;
    }
    std::vector<Comparison> comparisons;
    for (const int rules : options.sizes) {
        if (!measure(data, rules, options, comparisons)) {
            return 1;
        }
    }
    printComparisons("rules", comparisons, options.times);
    return 0;
}
