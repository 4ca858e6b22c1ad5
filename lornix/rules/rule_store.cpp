// Loading and storing the rules of folders.
#include "lornix/last_error.h"
#include "lornix/rules/new_rules.h"
#include "lornix/rules/rule_chain.h"
#include "lornix/rules/rule_file.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"
#include "store/lornix.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace lornix {
namespace {

/// What the host has seen of the rules of a folder, so that it replaces nothing that it never saw: a mark of them, or
/// nothing when they could not be read. Its user-interface thread alone loads and stores rules.
using Mark = std::uint64_t;
using SeenRules = std::unordered_map<std::u16string, std::optional<Mark>>;

SeenRules& seenRules()
{
    static SeenRules seen;
    static std::uint32_t choice = 0;
    if (choice != DataFolder::timesChosen()) {
        choice = DataFolder::timesChosen();
        seen.clear();
    }
    return seen;
}

Mark markOf(std::string_view lines)
{
    return checksumOf(lines);
}

QuotaRule* loadRules(const wchar_t* folder)
{
    return reporting<QuotaRule*>(nullptr, [&]() -> QuotaRule* {
        if (folder == nullptr || *folder == L'\0') {
            report(L"No folder was given to load the rules of.");
            return nullptr;
        }
        const DataFolder data = DataFolder::current();
        if (!data.isKnown()) {
            return nullptr;
        }
        std::u16string key = folderKey(fromWide(folder));
        Patience patience = Patience::toRead();
        const RuleBook* book = RuleFile(data).read(patience);
        const std::string_view lines = book == nullptr ? std::string_view() : book->entryOf(key).lines;
        Chain chain = chainOf(lines);
        seenRules()[key] = book == nullptr ? std::optional<Mark>() : markOf(lines);
        return chain.release();
    });
}

/// @return false with a report when a host would replace rules that it has not seen.
bool mayReplace(const NewRules::Group& group, std::string_view before)
{
    const auto seen = seenRules().find(group.key);
    if (seen == seenRules().end() || (seen->second && *seen->second == markOf(before))) {
        return true; // nobody asked for them, or they are as they were seen
    }
    const std::wstring rules = L"The rules of " + quoted(group.folder);
    report(!seen->second
               ? rules +
                     L" could not be read and are not replaced unseen. Read them again before changing them."
               : rules + L" were changed by somebody else since they were read here. Read them again before "
                         L"changing them.");
    return false;
}

/// @return false with a report; the file is then as it was.
bool change(RuleFile& file, const RuleBook& book, const NewRules& rules, Patience& patience)
{
    std::vector<RuleBook::Change> changes;
    std::vector<std::u16string> folders;
    changes.reserve(rules.groups().size());
    folders.reserve(rules.groups().size());
    bool isChanged = book.condition != Condition::kGood; // what is damaged is mended
    bool mayAll = true;
    for (const NewRules::Group& group : rules.groups()) {
        const RuleBook::Entry before = book.entryOf(group.key);
        const bool isKnown = !group.lines.empty();
        const bool isSame = before.lines == group.lines;
        isChanged = isChanged || !isSame || before.isKnown != isKnown;
        mayAll = (isSame || mayReplace(group, before.lines)) && mayAll;
        folders.push_back(isKnown && !before.isKnown ? fromWide(group.folder) : std::u16string());
        changes.push_back({before, folders.back(), isKnown, group.lines});
    }
    return mayAll && (!isChanged || file.change([&](RuleBook& stored) { stored.change(changes); }, patience));
}

bool storeRules(const NewRules& rules)
{
    DataFolder data = DataFolder::current();
    const auto lock = openForChange(data, L"Nothing was stored");
    if (!lock) {
        return false;
    }
    RuleFile file(data);
    Patience patience;
    const RuleBook* book = file.read(patience);
    if (rules.areTooMany()) {
        report(L"The rules are too many for one file.");
    }
    if (book == nullptr || rules.areTooMany() || !change(file, *book, rules, patience)) {
        report(L"Nothing was stored.");
        return false;
    }
    for (const NewRules::Group& group : rules.groups()) {
        if (const auto seen = seenRules().find(group.key); seen != seenRules().end()) {
            seen->second = markOf(group.lines);
        }
    }
    return true;
}

} // namespace
} // namespace lornix

QuotaRule* lornixLoadRules(const wchar_t* folder)
{
    return lornix::loadRules(folder);
}

int lornixStoreRules(const PathList* folders, const QuotaRule* chain)
{
    using namespace lornix;
    return reporting(0, [&] {
        if (folders == nullptr) {
            report(L"No folders were given to store the rules of.");
            return 0;
        }
        static NewRules rules;
        const bool isStored = rules.take(*folders, chain) && storeRules(rules);
        rules.clear();
        return isStored ? 1 : 0;
    });
}
