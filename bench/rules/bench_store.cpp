#include "bench_store.h"

#include "bench/support/account_sid.h"
#include "bench/support/sid_table.h"

#include <cwchar>
#include <vector>

namespace {

int servedRules = 0;
int servedFolders = 1;
bool servedSameLimit = false;
int servedMembers = 0;
std::vector<QuotaRule*> given;

constexpr DWORD kFirstAccount = 1000;

DWORD accountOf(const void* sid)
{
    return AccountSid::numberOf(sid) - kFirstAccount;
}

std::uint64_t scattered(std::uint64_t number)
{
    number += 0x9E3779B97F4A7C15u;
    number = (number ^ (number >> 30)) * 0xBF58476D1CE4E5B9u;
    number = (number ^ (number >> 27)) * 0x94D049BB133111EBu;
    return number ^ (number >> 31);
}

// Writes a text and behind it a number of a fixed length.
void writeNumbered(wchar_t* to, const wchar_t* text, std::uint32_t number, int digits)
{
    const std::size_t length = std::wcslen(text);
    std::wmemcpy(to, text, length);
    to += length;
    to[digits] = L'\0';
    while (digits > 0) {
        to[--digits] = static_cast<wchar_t>(L'0' + number % 10);
        number /= 10;
    }
}

QuotaRule* makeRule(int index, const wchar_t* folder)
{
    auto* rule = static_cast<QuotaRule*>(std::malloc(sizeof(QuotaRule)));
    const AccountSid sid(kFirstAccount + static_cast<DWORD>(index));
    const std::uint64_t random = scattered(static_cast<std::uint64_t>(index));
    *rule = QuotaRule{};
    rule->type = QUOTA_RULE_FOR_ACCOUNT;
    rule->inUse = static_cast<std::int64_t>(random % (1u << 30));
    rule->hardLimit =
        servedSameLimit ? 1 << 30 : static_cast<std::int64_t>((random >> 32) % 200 + 1) * 104857600;
    rule->softLimit = rule->hardLimit - rule->hardLimit / 20;
    rule->sid = AccountSid::copy(&sid);
    rule->path = _wcsdup(folder);
    given.push_back(rule);
    return rule;
}

// Names are scattered over the alphabet, so that rows arrive in no order; no two accounts share one.
wchar_t* getAccountBySidW(const void* sid, wchar_t* buffer, int)
{
    const std::uint64_t name = accountOf(sid) * std::uint64_t{48271} % 1000003;
    writeNumbered(buffer, L"EXAMPLE\\user", static_cast<std::uint32_t>(name), 7);
    return buffer;
}

void getTextualSidW(const void* sid, wchar_t* buffer, int)
{
    writeNumbered(buffer, L"S-1-5-21-1-2-3-", kFirstAccount + accountOf(sid), 7);
}

StoreTable ruleStore()
{
    StoreTable table = sidTable();
    table.getQuotaList = benchStoreRules;
    table.getAccountBySidW = getAccountBySidW;
    table.getTextualSidW = getTextualSidW;
    table.enumerateGroupUsers = [](const wchar_t*, const wchar_t*, SidList* list) {
        return servedMembers == 0 ? list : listOfAccounts(kFirstAccount, servedMembers);
    };
    return table;
}

} // namespace

void benchStoreServe(int rules, int folders, bool sameLimit)
{
    static const StoreTable store = ruleStore();
    installStore(&store);
    servedRules = rules;
    servedFolders = folders;
    servedSameLimit = sameLimit;
}

// Folders end in their number.
QuotaRule* benchStoreRules(const wchar_t* folder)
{
    const wchar_t* end = folder + std::wcslen(folder);
    int number = 0;
    for (int place = 1; end > folder && end[-1] >= L'0' && end[-1] <= L'9'; place *= 10) {
        number += place * (*--end - L'0');
    }
    const int perFolder = servedRules / servedFolders;
    QuotaRule* first = nullptr;
    QuotaRule* last = nullptr;
    for (int i = 0; i < perFolder; ++i) {
        QuotaRule* rule = makeRule(number * perFolder + i, folder);
        rule->prev = last;
        (last != nullptr ? last->next : first) = rule;
        last = rule;
    }
    return first;
}

int benchStoreFolders()
{
    return servedFolders;
}

void benchStoreServeMembers(int members)
{
    servedMembers = members;
}

void benchStoreReleaseAll()
{
    for (QuotaRule* rule : given) {
        std::free(rule->sid);
        std::free(rule->path);
        std::free(rule);
    }
    given.clear();
}
