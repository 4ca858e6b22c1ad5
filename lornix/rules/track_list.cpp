// Rules made for groups, remembered for accounts that join the groups later.
#include "lornix/disk/kept_file.h"
#include "lornix/last_error.h"
#include "lornix/rules/rule_file.h"
#include "lornix/sid.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "store/lornix.h"

#include <algorithm>

namespace lornix {
namespace {

constexpr const wchar_t* kCannot = L"The rule cannot be kept for tracking";

/// Puts a rule into the list; a later one for the same account and folder takes the place of the former.
void remember(std::vector<StoredRule>& rules, StoredRule rule)
{
    const std::u16string key = folderKey(rule.folder);
    const auto same = std::find_if(rules.begin(), rules.end(), [&](const StoredRule& each) {
        return std::ranges::equal(each.sid.bytes(), rule.sid.bytes()) && folderKey(each.folder) == key;
    });
    if (same == rules.end()) {
        rules.push_back(std::move(rule));
    } else {
        *same = std::move(rule);
    }
}

bool track(const QuotaRule& rule)
{
    if (rule.path == nullptr || *rule.path == L'\0' || rule.hardLimit <= 0 ||
        (rule.sid != nullptr && !isSid(rule.sid)))
    {
        report(std::wstring(kCannot) + L": it has no folder, no hard limit or no valid account.");
        return false;
    }
    const DataFolder data = DataFolder::current();
    const auto lock = openForChange(data, kCannot);
    if (!lock) {
        return false;
    }
    const KeptFile file{data, data.trackedRulesFile(), L"The file with the tracked rules"};
    Patience patience;
    auto content =
        readKept<TrackedRules>(file, lock.get(), patience, readTrackedRules,
                               [](const TrackedRules& tracked) { return writeTrackedRules(tracked.rules); });
    if (!content) {
        return false;
    }
    remember(content->rules,
             {rule.hardLimit, rule.softLimit, rule.inUse, Sid(sidBytes(rule.sid)), fromWide(rule.path)});
    return replaceWith(file, writeTrackedRules(content->rules), patience);
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
