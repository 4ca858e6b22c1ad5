#include "parts.h"

#include "bench/support/list_view.h"
#include "bench/support/memory.h"
#include "bench/support/time.h"
#include "bench_store.h"
#include "measure.h"
#include "row_text.h"
#include "side.h"
#include "store/lornix.h"

#include <climits>
#include <cstdio>
#include <cwchar>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace {

struct HashOfRule {
    std::size_t operator()(const QuotaRule* rule) const
    {
        const std::string_view account(static_cast<const char*>(rule->sid), GetLengthSid(rule->sid));
        return std::hash<std::wstring_view>{}(rule->path) * 31 + std::hash<std::string_view>{}(account);
    }
};

struct SameRule {
    bool operator()(const QuotaRule* a, const QuotaRule* b) const
    {
        return a->hardLimit == b->hardLimit && a->softLimit == b->softLimit &&
               std::wcscmp(a->path, b->path) == 0 && sidcmp(a->sid, b->sid) == 0;
    }
};

std::vector<QuotaRule*> rulesOf(const PathList& folders)
{
    std::vector<QuotaRule*> rules;
    for (int folder = 0; folder < folders.count; ++folder) {
        for (QuotaRule* rule = getQuotaList(folders.paths[folder]); rule != nullptr; rule = rule->next) {
            rules.push_back(rule);
        }
    }
    return rules;
}

/// @return how many of the rules asked for are not among those shown: none.
std::size_t lookUp(const std::vector<QuotaRule*>& shown, const std::vector<QuotaRule*>& asked)
{
    std::unordered_set<const QuotaRule*, HashOfRule, SameRule> set(shown.size() * 2);
    set.insert(shown.begin(), shown.end());
    std::size_t unknown = 0;
    for (const QuotaRule* rule : asked) {
        unknown += set.insert(rule).second ? 1 : 0;
    }
    return unknown;
}

/// The texts of the numbers are there, as for the bare side.
std::vector<RowText> numbersOf(const PathList& folders)
{
    std::vector<RowText> texts;
    for (const QuotaRule* rule : rulesOf(folders)) {
        texts.emplace_back().writeNumbers(*rule);
    }
    return texts;
}

/// The fill of the bare side, but from the uppermost row to the lowest: here its order does not matter.
void append(HWND list, const PathList& folders, std::vector<RowText>& texts)
{
    list_view::setRedraw(list, false);
    RowText* text = texts.data();
    for (const QuotaRule* rule : rulesOf(folders)) {
        text->writeName(*rule);
        text->insertInto(list, rule->path, reinterpret_cast<LPARAM>(rule), INT_MAX);
        ++text;
    }
    list_view::setRedraw(list, true);
}

/// @return the characters of all texts.
std::size_t readColumn(HWND list, int column)
{
    std::size_t characters = 0;
    wchar_t text[260];
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_PARAM;
    item.iSubItem = column;
    const int rows = list_view::rowCount(list);
    for (item.iItem = 0; item.iItem < rows; ++item.iItem) {
        item.pszText = text;
        item.cchTextMax = static_cast<int>(std::size(text));
        SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        characters += std::wcslen(item.pszText);
    }
    return characters;
}

} // namespace

std::vector<Comparison> measureParts(HWND window, const Options& options)
{
    std::vector<Comparison> comparisons;
    for (const int size : options.sizes) {
        const Folders folders(size / 100);
        benchStoreServe(size, folders.count(), false);
        const auto bare = bareSide(folders.list());
        std::vector<RowText> texts = numbersOf(folders.list());
        benchStoreReleaseAll();
        Tally fill;
        Tally appending;
        Tally sort;
        Tally reading;
        Tally refill;
        Tally lookingUp;
        for (int round = 0; round < options.roundsOf(size); ++round) {
            HWND list = createList(window);
            appending.add(timed([&] { append(list, folders.list(), texts); }));
            settle(window);
            DestroyWindow(list);
            benchStoreReleaseAll();
            list = createList(window);
            fill.add(timed([&] { bare->fill(list, folders.list()); }));
            settle(window);
            reading.add(timed([&] { readColumn(list, kInUseColumn); }));
            sort.add(timed([&] { bare->sort(list, kInUseColumn); }));
            refill.add(timed([&] { bare->refill(list, folders.list()); }));
            const std::vector<QuotaRule*> shown = rulesOf(folders.list());
            const std::vector<QuotaRule*> asked = rulesOf(folders.list());
            std::size_t unknown = 0;
            lookingUp.add(timed([&] { unknown = lookUp(shown, asked); }));
            if (unknown != 0) {
                std::fprintf(stderr, "%zu rules were not found again\n", unknown);
            }
            DestroyWindow(list);
            benchStoreReleaseAll();
        }
        comparisons.push_back({"appending the rows, beside a fill", size, appending, fill});
        comparisons.push_back({"reading a column, beside a sort by number", size, reading, sort});
        comparisons.push_back({"a set of the rules, beside a re-fill", size, lookingUp, refill});
    }
    return comparisons;
}

void printMemory(HWND window, const Options& options)
{
    for (const int size : options.sizes) {
        const Folders folders(size / 100);
        benchStoreServe(size, folders.count(), false);
        const auto corvane = corvaneSide();
        HWND list = createList(window);
        MemoryInUse memory("rules", size);
        corvane->fill(list, folders.list());
        memory.print("fill");
        corvane->sort(list, kInUseColumn);
        memory.print("sort by number");
        corvane->sort(list, kNameColumn);
        memory.print("sort by text");
        corvane->refill(list, folders.list());
        memory.print("re-fill, with the store's second records");
        selectEverySecondRow(list);
        corvane->drop(list);
        memory.print("drop of every second row");
        DestroyWindow(list);
        benchStoreReleaseAll();
    }
}
