// Loading and storing the rules of folders.
#include "lornix/accounts/remembered_names.h"
#include "lornix/disk/kept_file.h"
#include "lornix/disk/seen_files.h"
#include "lornix/last_error.h"
#include "lornix/rules/known_folders.h"
#include "lornix/rules/rule_file.h"
#include "lornix/sid.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"
#include "store/lornix.h"

#include <cstdlib>
#include <cwchar>
#include <memory>
#include <unordered_map>

namespace lornix {
namespace {

/// What the host has seen. Its user-interface thread alone loads and stores rules.
SeenFiles& seenRules()
{
    static SeenFiles seen;
    static std::uint32_t choice = 0;
    if (choice != DataFolder::timesChosen()) {
        choice = DataFolder::timesChosen();
        seen = SeenFiles();
    }
    return seen;
}

std::wstring quoted(std::u16string_view folder)
{
    return L'"' + toWide(folder) + L'"';
}

struct ChainDelete {
    void operator()(QuotaRule* rule) const { lornixFreeRules(rule); }
};
using Chain = std::unique_ptr<QuotaRule, ChainDelete>;

wchar_t* copyOf(std::u16string_view text)
{
    auto* copy = static_cast<wchar_t*>(std::malloc((text.size() + 1) * sizeof(wchar_t)));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    *std::copy(text.begin(), text.end(), copy) = L'\0';
    return copy;
}

QuotaRule* recordOf(const StoredRule& rule)
{
    Chain record(static_cast<QuotaRule*>(std::calloc(1, sizeof(QuotaRule))));
    if (record == nullptr) {
        throw std::bad_alloc();
    }
    record->type = rule.sid.isEmpty() ? QUOTA_RULE_FOR_ANYONE : QUOTA_RULE_FOR_ACCOUNT;
    record->inUse = rule.inUse;
    record->hardLimit = rule.hardLimit;
    record->softLimit = rule.softLimit;
    if (!rule.sid.isEmpty()) {
        record->sid = sidDup(rule.sid.bytes().data());
        if (record->sid == nullptr) {
            throw std::bad_alloc();
        }
    }
    record->path = copyOf(rule.folder);
    return record.release();
}

Chain chainOf(const std::vector<StoredRule>& rules)
{
    Chain first;
    QuotaRule* last = nullptr;
    for (const StoredRule& rule : rules) {
        QuotaRule* record = recordOf(rule);
        record->prev = last;
        if (last == nullptr) {
            first.reset(record);
        } else {
            last->next = record;
        }
        last = record;
    }
    return first;
}

KeptFile rulesFileOf(const DataFolder& folder, std::u16string_view key, std::u16string_view name)
{
    return {folder, folder.rulesFile(key), L"The file with the rules of " + quoted(name)};
}

FolderRules parseRules(std::string_view text, std::u16string_view key)
{
    FolderRules rules = readFolderRules(text);
    // A copy of another folder's file would bring that folder's rules here.
    return folderKey(rules.folder) == key ? rules : FolderRules();
}

/// Whether a file that is to be replaced could be read, or be set aside as damaged.
bool clearTheWay(const KeptFile& file, std::u16string_view key, const StoreLock& lock, Patience& patience)
{
    return readKept<FolderRules>(
               file, &lock, patience, [&](std::string_view text) { return parseRules(text, key); },
               [](const FolderRules& rules) { return writeFolderRules(rules.folder, rules.rules); })
        .has_value();
}

/// Reads for a host, and keeps in mind what it has seen.
std::optional<FolderRules> showRules(const KeptFile& file, std::u16string_view key)
{
    SeenFiles::Mark text = SeenFiles::markOf({});
    std::optional<SeenFiles::Mark> mended;
    const auto parse = [&](std::string_view read) {
        text = SeenFiles::markOf(read);
        mended.reset();
        FolderRules rules = parseRules(read, key);
        if (rules.condition == Condition::kForeign) {
            mended = SeenFiles::markOf({}); // nothing stays under its name
        }
        return rules;
    };
    const auto rewrite = [&](const FolderRules& rules) {
        std::string replacement = writeFolderRules(rules.folder, rules.rules);
        mended = SeenFiles::markOf(replacement);
        return replacement;
    };
    Patience patience = Patience::toRead();
    auto content = readKept<FolderRules>(file, nullptr, patience, parse, rewrite);
    if (content) {
        seenRules().saw(file.path, text, mended.value_or(text));
    } else {
        seenRules().missed(file.path);
    }
    return content;
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
        const std::u16string name = fromWide(folder);
        const std::u16string key = folderKey(name);
        const auto content = showRules(rulesFileOf(data, key, name), key);
        return content ? chainOf(content->rules).release() : nullptr;
    });
}

/// The rules of one folder that are to be stored.
struct FolderGroup {
    std::u16string folder;
    std::u16string key;
    std::vector<const QuotaRule*> rules;
};

/// What is to be done for one folder once everything is written.
struct Change {
    const FolderGroup* group;
    std::wstring target;
    bool removes; ///< instead of putting the temporary file in its place
    SeenFiles::Mark text;
};

class Storing {
public:
    /// @return false with a report when something in the arguments cannot be stored.
    bool sort(const PathList& folders, const QuotaRule* chain);

    /// @return false with a report; what could not be replaced is as it was.
    bool store(const DataFolder& data);

private:
    FolderGroup* groupOf(const QuotaRule& rule);
    bool prepare(const DataFolder& data, const StoreLock& lock);
    bool prepareFolder(const DataFolder& data, const FolderGroup& group, const StoreLock& lock);
    bool commit(const DataFolder& data, const StoreLock& lock);
    void abandon();

    std::vector<FolderGroup> groups_;
    std::unordered_map<std::u16string, std::size_t> groupsByKey_;
    std::u16string lastPath_;
    FolderGroup* lastGroup_ = nullptr;
    std::vector<Change> changes_;
    Patience patience_;
};

/// @return what keeps a rule from being stored, or null.
const wchar_t* flawOf(const QuotaRule& rule)
{
    if (rule.path == nullptr || *rule.path == L'\0') {
        return L"it names no folder";
    }
    if (rule.hardLimit <= 0) {
        return L"its hard limit is 0 or less";
    }
    if (rule.sid != nullptr && !isSid(rule.sid)) {
        return L"its account is no valid security identifier";
    }
    return nullptr;
}

FolderGroup* Storing::groupOf(const QuotaRule& rule)
{
    // Rules of one folder mostly follow each other and spell it alike.
    const std::wstring_view path = rule.path;
    if (lastGroup_ == nullptr || !std::equal(path.begin(), path.end(), lastPath_.begin(), lastPath_.end())) {
        lastPath_ = fromWide(path);
        const auto found = groupsByKey_.find(folderKey(lastPath_));
        lastGroup_ = found == groupsByKey_.end() ? nullptr : &groups_[found->second];
    }
    return lastGroup_;
}

bool Storing::sort(const PathList& folders, const QuotaRule* chain)
{
    wchar_t* const* paths = folders.paths;
    for (std::int32_t i = 0; i < folders.count; ++i) {
        if (paths[i] == nullptr || *paths[i] == L'\0') {
            report(L"Nothing was stored: folder " + std::to_wstring(i + 1) + L" of the list has no name.");
            return false;
        }
        FolderGroup group{fromWide(paths[i]), folderKey(fromWide(paths[i])), {}};
        if (groupsByKey_.try_emplace(group.key, groups_.size()).second) {
            groups_.push_back(std::move(group));
        }
    }
    std::size_t number = 1;
    for (const QuotaRule* rule = chain; rule != nullptr; rule = rule->next, ++number) {
        const wchar_t* flaw = flawOf(*rule);
        FolderGroup* group = flaw == nullptr ? groupOf(*rule) : nullptr;
        if (flaw == nullptr && group == nullptr) {
            flaw = L"its folder is not among those to be stored";
        }
        if (flaw != nullptr) {
            report(L"Nothing was stored: rule " + std::to_wstring(number) + L", on " +
                   quoted(rule->path == nullptr ? std::u16string() : fromWide(rule->path)) +
                   L", cannot be kept, because " + flaw + L'.');
            return false;
        }
        group->rules.push_back(rule);
    }
    return true;
}

void noteStored(const std::wstring& path, SeenFiles::Mark text)
{
    if (seenRules().knows(path)) {
        seenRules().saw(path, text, text);
    }
}

/// @return false with a report when a host would replace rules that it has not seen.
bool mayReplace(const KeptFile& file, const FolderGroup& group, std::string_view before)
{
    switch (seenRules().standingOf(file.path, SeenFiles::markOf(before))) {
    case SeenFiles::Standing::kChanged:
        report(L"The rules of " + quoted(group.folder) +
               L" were changed by somebody else since they were read here. Read them again before changing "
               L"them.");
        return false;
    case SeenFiles::Standing::kUnseen:
        report(L"The rules of " + quoted(group.folder) +
               L" could not be read and are not replaced unseen. Read them again before changing them.");
        return false;
    case SeenFiles::Standing::kUntouched:
        break;
    }
    return true;
}

bool Storing::prepareFolder(const DataFolder& data, const FolderGroup& group, const StoreLock& lock)
{
    const KeptFile file = rulesFileOf(data, group.key, group.folder);
    std::string before;
    const Reading reading = readBytes(file, before, patience_);
    if (reading == Reading::kFailed) {
        return false;
    }
    std::string text;
    if (!group.rules.empty()) {
        FolderRulesWriter writer(group.folder);
        for (const QuotaRule* rule : group.rules) {
            writer.add(rule->hardLimit, rule->softLimit, rule->inUse, sidBytes(rule->sid),
                       fromWide(rule->path));
        }
        text = writer.finish();
    }
    const bool isThere = reading == Reading::kDone;
    const SeenFiles::Mark mark = SeenFiles::markOf(text);
    if (isThere == !text.empty() && text == before) {
        noteStored(file.path, mark);
        return true;
    }
    if (!mayReplace(file, group, before)) {
        return false;
    }
    // What is in the way may be damaged, and must not be lost.
    if (isThere && !clearTheWay(file, group.key, lock, patience_)) {
        return false;
    }
    if (!text.empty()) {
        if (const DWORD error = writeFile(temporaryFor(file.path), text, CREATE_ALWAYS);
            error != ERROR_SUCCESS)
        {
            report(L"The rules of " + quoted(group.folder) + L" cannot be written: " + reasonOf(error));
            return false;
        }
    }
    changes_.push_back({&group, file.path, text.empty(), mark});
    return true;
}

bool Storing::prepare(const DataFolder& data, const StoreLock& lock)
{
    for (const FolderGroup& group : groups_) {
        if (!prepareFolder(data, group, lock)) {
            return false;
        }
    }
    return true;
}

void Storing::abandon()
{
    for (const Change& change : changes_) {
        if (!change.removes) {
            removeFile(temporaryFor(change.target), patience_);
        }
    }
    report(L"Nothing was stored.");
}

bool Storing::commit(const DataFolder& data, const StoreLock& lock)
{
    // Known before there are rules, and until there are none: a kill never leaves rules that nobody looks for.
    FolderChanges joining;
    for (const FolderGroup& group : groups_) {
        if (!group.rules.empty()) {
            joining.added.push_back(group.folder);
        }
    }
    if (!changeKnownFolders(data, lock, joining, patience_)) {
        abandon();
        return false;
    }
    bool complete = true;
    std::unordered_map<std::u16string_view, bool> failed;
    for (const Change& change : changes_) {
        DWORD error = change.removes ? removeFile(change.target, patience_)
                                     : replaceFile(temporaryFor(change.target), change.target, patience_);
        if (change.removes && error == ERROR_FILE_NOT_FOUND) {
            error = ERROR_SUCCESS; // it was set aside
        }
        if (error != ERROR_SUCCESS) {
            report(L"The rules of " + quoted(change.group->folder) + L" cannot be stored in \"" +
                   change.target + L"\", where the former ones stay: " + reasonOf(error));
            removeFile(temporaryFor(change.target), patience_);
            failed[change.group->key] = true;
            complete = false;
        } else {
            noteStored(change.target, change.text);
        }
    }
    FolderChanges leaving;
    for (const FolderGroup& group : groups_) {
        if (group.rules.empty() && !failed.contains(group.key)) {
            leaving.removed.push_back(group.folder);
        }
    }
    return changeKnownFolders(data, lock, leaving, patience_) && complete;
}

bool Storing::store(const DataFolder& data)
{
    const auto lock = openForChange(data, L"Nothing was stored");
    if (!lock) {
        return false;
    }
    if (!prepare(data, *lock)) {
        abandon();
        return false;
    }
    return commit(data, *lock);
}

} // namespace
} // namespace lornix

QuotaRule* getQuotaList(const wchar_t* folder)
{
    QuotaRule* const rules = lornix::loadRules(folder);
    for (const QuotaRule* rule = rules; rule != nullptr; rule = rule->next) {
        lornix::expectName(rule->sid); // a list shows them
    }
    return rules;
}

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
        Storing storing;
        if (!storing.sort(*folders, chain)) {
            return 0;
        }
        const DataFolder data = DataFolder::current();
        return storing.store(data) ? 1 : 0;
    });
}

void lornixFreeRules(QuotaRule* chain)
{
    while (chain != nullptr) {
        QuotaRule* next = chain->next;
        std::free(chain->sid);
        std::free(chain->path);
        std::free(chain);
        chain = next;
    }
}
