// Rules made for groups, remembered for accounts that join the groups later.
#include "lornix/disk/kept_file.h"
#include "lornix/last_error.h"
#include "lornix/rules/rule_book.h"
#include "lornix/rules/rule_lines.h"
#include "lornix/sid.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "store/lornix.h"

#include <algorithm>

namespace lornix {
namespace {

constexpr const wchar_t* kCannot = L"The rule cannot be kept for tracking";

struct TrackedBook : RuleBook {
    TrackedBook()
        : RuleBook(kTrackedRules)
    {
    }
    explicit TrackedBook(std::string_view text)
        : RuleBook(kTrackedRules, text)
    {
    }
};

bool track(const QuotaRule& rule)
{
    if (rule.path == nullptr || *rule.path == L'\0' || flawOfLimits(rule.hardLimit, rule.softLimit) ||
        (rule.sid != nullptr && !isSid(rule.sid)))
    {
        report(std::wstring(kCannot) +
               L": it has no folder, no hard limit, a soft limit above it, or no valid account.");
        return false;
    }
    DataFolder data = DataFolder::current();
    const auto lock = openForChange(data, kCannot);
    if (!lock) {
        return false;
    }
    KeptFile file{data, data.path(L"tracked-rules.txt"), L"The file with the tracked rules"};
    Patience patience;
    auto book =
        readKept<TrackedBook>(file, patience, [](std::string_view text) { return TrackedBook(text); });
    if (!book) {
        return false;
    }
    // A later rule for the same account and folder takes the place of the former.
    const std::u16string folder = fromWide(rule.path);
    const std::u16string key = folderKey(folder);
    const RuleBook::Entry before = book->entryOf(key);
    std::vector<StoredRule> rules = book->rulesOf(key);
    StoredRule mine{rule.hardLimit, rule.softLimit, rule.inUse, Sid(sidBytes(rule.sid)), folder};
    const auto same = std::ranges::find_if(rules, [&](const StoredRule& each) {
        return std::ranges::equal(each.sid.bytes(), mine.sid.bytes());
    });
    if (same == rules.end()) {
        rules.push_back(std::move(mine));
    } else {
        *same = std::move(mine);
    }
    RuleLines lines;
    for (const StoredRule& each : rules) {
        lines.startFolder(each.folder);
        lines.append(each.hardLimit, each.softLimit, each.inUse, each.sid.bytes());
    }
    const RuleBook::Change change{before, folder, false, lines.text()};
    book->change({&change, 1});
    return replaceKept(file, book->condition, book->text(), patience);
}

} // namespace
} // namespace lornix

void addToTrackList(const QuotaRule* rule)
{
    lornix::reporting(false, [&] {
        if (rule == nullptr) {
            lornix::report(L"No rule was given to keep for tracking.");
            return false;
        }
        return lornix::track(*rule);
    });
}
