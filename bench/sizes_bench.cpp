// Quota Settings opened for ten accounts, one after the other, on a tree of real files: the library on its own store,
// beside the straightforward way, which walks the tree for each size and opens every file for its owner, and beside the
// bare minimum, which does both once. Timed from the first opening to the last.
//   sizes_bench TREE=FILES ... [--rounds=N] [--no-row-by-row] [--times]
// Exit code 1 when the sides did not find the same bytes.
#include "bench/support/options.h"
#include "bench/support/table.h"
#include "bench/support/time.h"
#include "corvane.h"
#include "lornix_host.h"
#include "res/resource.h"
#include "store/lornix.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <sddl.h>
#include <string>
#include <vector>

namespace {

constexpr int kAccounts = 10;

using Sid = std::unique_ptr<void, decltype(&std::free)>;

Sid sidOf(const wchar_t* text)
{
    PSID sid = nullptr;
    ConvertStringSidToSidW(text, &sid);
    Sid copy(sidDup(sid), std::free);
    LocalFree(sid);
    return copy;
}

/// Whoever the files belong to.
Sid self()
{
    HANDLE token = nullptr;
    alignas(TOKEN_USER) BYTE user[256];
    DWORD size = 0;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token);
    GetTokenInformation(token, TokenUser, user, sizeof user, &size);
    CloseHandle(token);
    return {sidDup(reinterpret_cast<TOKEN_USER*>(user)->User.Sid), std::free};
}

/// The accounts of the ten openings. One owns the files.
std::vector<Sid> accounts()
{
    std::vector<Sid> sids;
    sids.push_back(self());
    for (int i = 1; i < kAccounts; ++i) {
        sids.push_back(sidOf((L"S-1-5-21-1-2-3-" + std::to_wstring(1000 + i)).c_str()));
    }
    return sids;
}

void CALLBACK cancel(HWND, UINT, UINT_PTR, DWORD)
{
    HWND dialog = GetActiveWindow();
    if (dialog != nullptr && GetDlgItem(dialog, IDC_QUOTA_OBJECT_SIZE) != nullptr) {
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    }
}

/// @return what all accounts own.
std::int64_t openSettings(const std::wstring& tree, const std::vector<Sid>& sids)
{
    std::int64_t owned = 0;
    std::wstring path = tree;
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, cancel);
    for (const Sid& sid : sids) {
        QuotaRule rule{};
        rule.type = QUOTA_RULE_FOR_ACCOUNT;
        rule.path = path.data();
        rule.sid = sid.get();
        rule.inUse = -1;
        editQuotaListEntry(nullptr, &rule, 0);
        owned += rule.inUse;
    }
    KillTimer(nullptr, timer);
    return owned;
}

void forFiles(const std::wstring& folder, const std::function<void(const std::wstring&, std::int64_t)>& use)
{
    WIN32_FIND_DATAW found{};
    HANDLE search = FindFirstFileExW((folder + L"\\*").c_str(), FindExInfoBasic, &found,
                                     FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &found)) {
        const std::wstring path = folder + L'\\' + found.cFileName;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            use(path, found.nFileSizeLow);
        } else if (wcscmp(found.cFileName, L".") != 0 && wcscmp(found.cFileName, L"..") != 0) {
            forFiles(path, use);
        }
    }
    FindClose(search);
}

bool isOwnedBy(const std::wstring& file, void* sid)
{
    alignas(SECURITY_DESCRIPTOR) BYTE descriptor[sizeof(SECURITY_DESCRIPTOR) + SECURITY_MAX_SID_SIZE];
    DWORD needed = 0;
    PSID owner = nullptr;
    BOOL isDefault = FALSE;
    return GetFileSecurityW(file.c_str(), OWNER_SECURITY_INFORMATION, descriptor, sizeof descriptor,
                            &needed) &&
           GetSecurityDescriptorOwner(descriptor, &owner, &isDefault) && EqualSid(owner, sid);
}

std::int64_t ownedIn(const std::wstring& tree, void* sid)
{
    std::int64_t owned = 0;
    forFiles(tree,
             [&](const std::wstring& file, std::int64_t size) { owned += isOwnedBy(file, sid) ? size : 0; });
    return owned;
}

std::int64_t straightforward(const std::wstring& tree, const std::vector<Sid>& sids)
{
    std::int64_t owned = 0;
    for (const Sid& sid : sids) {
        std::int64_t all = 0;
        forFiles(tree, [&](const std::wstring&, std::int64_t size) { all += size; });
        owned += ownedIn(tree, sid.get());
    }
    return owned;
}

bool measure(const std::wstring& tree, int files, const Options& options,
             std::vector<Comparison>& comparisons)
{
    const std::vector<Sid> sids = accounts();
    Tally corvane;
    Tally bare;
    Tally slow;
    std::int64_t found[3] = {};
    const int rounds = options.rounds != 0 ? options.rounds : 1;
    for (int round = 0; round < rounds; ++round) {
        // A file of another time: what was measured before does not count.
        const std::wstring changed = tree + L"\\changed";
        CloseHandle(CreateFileW(changed.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        bare.add(timed([&] { found[0] = ownedIn(tree, sids.front().get()); }));
        corvane.add(timed([&] { found[1] = openSettings(tree, sids); }));
        found[2] = found[1];
        if (options.rowByRow) {
            slow.add(timed([&] { found[2] = straightforward(tree, sids); }));
        }
        if (found[0] == 0 || found[1] != found[0] || found[2] != found[0]) {
            std::fprintf(stderr, "The sides found %lld, %lld and %lld bytes\n",
                         static_cast<long long>(found[0]), static_cast<long long>(found[1]),
                         static_cast<long long>(found[2]));
            return false;
        }
    }
    comparisons.push_back({"Quota Settings for ten accounts", files, corvane, bare,
                           options.rowByRow ? std::optional(slow) : std::nullopt, Clock::kWall});
    return true;
}

} // namespace

int main(int count, char** arguments)
{
    std::vector<char*> rest{arguments[0]};
    std::vector<std::pair<std::wstring, int>> trees;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        const std::size_t sign = argument.rfind('=');
        if (argument.starts_with("--") || sign == std::string::npos) {
            rest.push_back(arguments[i]);
        } else {
            trees.emplace_back(
                std::wstring(argument.begin(), argument.begin() + static_cast<std::ptrdiff_t>(sign)),
                std::atoi(argument.c_str() + sign + 1));
        }
    }
    Options options;
    if (!readOptions(static_cast<int>(rest.size()), rest.data(), 1000, 1000000, options)) {
        return 2;
    }
    std::vector<Comparison> comparisons;
    for (const auto& [tree, files] : trees) {
        if (!measure(tree, files, options, comparisons)) {
            return 1;
        }
    }
    printComparisons("files", comparisons, options.times);
    return 0;
}
