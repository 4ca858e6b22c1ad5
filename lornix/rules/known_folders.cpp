// The folders that carry rules.
#include "lornix/last_error.h"
#include "lornix/rules/rule_file.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <algorithm>
#include <unordered_set>

namespace lornix {
namespace {

/// What a caller was given as the known folders. When it stores its list, this tells what it added and took out.
struct Given {
    std::uint32_t dataFolder;            ///< the choice of the data folder that they are of
    std::vector<std::u16string> folders; ///< none when they could not be read: nothing is taken out then
};
std::optional<Given> given; // nothing: nobody asked, and a list is stored as it comes

/// Keeps the first of those that spell the same folder.
std::vector<std::u16string> withoutRepeats(const std::vector<std::u16string>& folders)
{
    std::vector<std::u16string> once;
    std::unordered_set<std::u16string> keys;
    for (const std::u16string& folder : folders) {
        if (keys.insert(folderKey(folder)).second) {
            once.push_back(folder);
        }
    }
    return once;
}

std::unordered_set<std::u16string> keysOf(const std::vector<std::u16string>& folders)
{
    std::unordered_set<std::u16string> keys;
    for (const std::u16string& folder : folders) {
        keys.insert(folderKey(folder));
    }
    return keys;
}

/// The stored folders with the changes that a caller made to those it was given: what others added meanwhile stays.
std::vector<std::u16string> merged(const std::vector<std::u16string>& stored,
                                   const std::vector<std::u16string>& before,
                                   const std::vector<std::u16string>& after)
{
    auto removed = keysOf(before);
    for (const std::u16string& folder : after) {
        removed.erase(folderKey(folder));
    }
    std::vector<std::u16string> all;
    for (const std::u16string& folder : stored) {
        if (!removed.contains(folderKey(folder))) {
            all.push_back(folder);
        }
    }
    all.insert(all.end(), after.begin(), after.end());
    return withoutRepeats(all);
}

/// @param toChange  whether the caller may store the list again.
PathList* loadFolders(bool toChange)
{
    return reporting<PathList*>(nullptr, [&]() -> PathList* {
        const DataFolder data = DataFolder::current();
        if (!data.isKnown()) {
            return nullptr;
        }
        Patience patience = Patience::toRead();
        const RuleBook* book = RuleFile(data).read(patience);
        const auto folders = book == nullptr ? std::vector<std::u16string>() : book->knownFolders();
        if (toChange) {
            given = Given{DataFolder::timesChosen(), folders};
        }
        Owned<PathList*, freePathList> list;
        for (const std::u16string& folder : folders) {
            list.reset(appendToPaths(list.release(), toWide(folder).c_str()));
        }
        return list.release();
    });
}

bool storeFolders(const PathList* list)
{
    std::vector<std::u16string> folders;
    if (list != nullptr) {
        wchar_t* const* paths = list->paths;
        for (std::int32_t i = 0; i < list->count; ++i) {
            if (paths[i] != nullptr && *paths[i] != L'\0') {
                folders.push_back(fromWide(paths[i]));
            }
        }
    }
    DataFolder data = DataFolder::current();
    const auto lock = openForChange(data, L"The known folders cannot be stored");
    RuleFile file(data);
    Patience patience;
    const RuleBook* book = lock ? file.read(patience) : nullptr;
    if (book == nullptr) {
        return false;
    }
    const std::vector<std::u16string> before = book->knownFolders();
    folders = withoutRepeats(folders);
    const std::vector<std::u16string> own = folders;
    const bool isGiven = given && given->dataFolder == DataFolder::timesChosen();
    if (isGiven && given->folders != before) {
        folders = merged(before, given->folders, own);
    }
    if (before != folders && !file.change([&](RuleBook& stored) { stored.changeKnown(folders); }, patience)) {
        return false;
    }
    if (isGiven) {
        given->folders = own;
    }
    return true;
}

} // namespace
} // namespace lornix

PathList* getKnownPaths(void)
{
    return lornix::loadFolders(true);
}

PathList* lornixKnownFolders(void)
{
    return lornix::loadFolders(false);
}

void storeKnownPaths(const PathList* list)
{
    lornix::reporting(false, [&] { return lornix::storeFolders(list); });
}

void lornixFreeFolders(PathList* folders)
{
    freePathList(folders);
}
