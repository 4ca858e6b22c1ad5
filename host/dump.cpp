#include "host/dump.h"

#include "host/console.h"
#include "host/folder_name.h"
#include "host/known_folders.h"
#include "host/owned.h"

#include "lornix_host.h"

#include <windows.h>

#include <algorithm>
#include <array>

namespace host {
namespace {

using Row = std::array<std::wstring, 5>;

constexpr bool kRightAligned[] = {false, true, true, true, false};

std::vector<std::wstring> foldersToDump(const std::vector<std::wstring>& wanted)
{
    std::vector<std::wstring> folders = wanted;
    if (folders.empty()) {
        folders = knownFolders();
    }
    for (std::wstring& folder : folders) {
        folder = tidyFolder(folder);
    }
    std::sort(folders.begin(), folders.end(),
              [](const auto& a, const auto& b) { return folderKey(a) < folderKey(b); });
    folders.erase(std::unique(folders.begin(), folders.end(),
                              [](const auto& a, const auto& b) { return folderKey(a) == folderKey(b); }),
                  folders.end());
    return folders;
}

Row rowOf(const QuotaRule& rule)
{
    wchar_t account[256] = L"";
    lornixAccountName(rule.sid, account, static_cast<int>(std::size(account)));
    return {account, std::to_wstring(rule.hardLimit), std::to_wstring(rule.softLimit),
            std::to_wstring(rule.inUse), tidyFolder(rule.path)};
}

std::wstring table(const std::vector<Row>& rows)
{
    std::array<size_t, std::tuple_size_v<Row>> widths{};
    for (const Row& row : rows) {
        for (size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    std::wstring text;
    for (const Row& row : rows) {
        for (size_t column = 0; column < row.size(); ++column) {
            const std::wstring blanks(widths[column] - row[column].size(), L' ');
            const bool last = column + 1 == row.size();
            text +=
                kRightAligned[column] ? blanks + row[column] : row[column] + (last ? std::wstring() : blanks);
            text += last ? L"\n" : L"  ";
        }
    }
    return text;
}

} // namespace

bool dumpRules(const std::vector<std::wstring>& folders)
{
    bool complete = true;
    std::wstring told; // the folders are in one file, and what is wrong with it is said of each
    const auto report = [&] {
        if (const std::wstring error = lornixLastError(); !error.empty()) {
            printText(error == told ? std::wstring() : error + L"\n", true);
            told = error;
            complete = false;
        }
    };
    const std::vector<std::wstring> wanted = foldersToDump(folders);
    if (folders.empty()) {
        report();
    }
    std::vector<Row> rows{{L"Credentials", L"Quota Limit", L"Soft Quota Limit", L"In Use", L"Defined in"}};
    for (const std::wstring& folder : wanted) {
        const Owned<QuotaRule, lornixFreeRules> rules(lornixLoadRules(folder.c_str()));
        report();
        for (const QuotaRule* rule = rules.get(); rule != nullptr; rule = rule->next) {
            rows.push_back(rowOf(*rule));
        }
    }
    printText(rows.size() == 1 ? L"No rules are stored.\n" : table(rows));
    return complete;
}

} // namespace host
