#include "lornix/rules/known_folders.h"

#include "lornix/disk/kept_file.h"
#include "lornix/last_error.h"
#include "lornix/rules/rule_file.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "lornix_host.h"
#include "store/lornix.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

namespace lornix {
namespace {

struct PathListDelete {
    void operator()(PathList* list) const { freePathList(list); }
};

KeptFile knownFoldersFile(const DataFolder& data)
{
    return {data, data.knownFoldersFile(), L"The file with the known folders"};
}

std::optional<KnownFolders> readFolders(const KeptFile& file, const StoreLock* lock, Patience& patience)
{
    return readKept<KnownFolders>(file, lock, patience, readKnownFolders, [](const KnownFolders& content) {
        return writeKnownFolders(content.folders);
    });
}

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
        const auto content = readFolders(knownFoldersFile(data), nullptr, patience);
        if (toChange) {
            given =
                Given{DataFolder::timesChosen(), content ? content->folders : std::vector<std::u16string>()};
        }
        std::unique_ptr<PathList, PathListDelete> list;
        if (content) {
            for (const std::u16string& folder : content->folders) {
                list.reset(appendToPaths(list.release(), toWide(folder).c_str()));
            }
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
    const DataFolder data = DataFolder::current();
    const auto lock = openForChange(data, L"The known folders cannot be stored");
    if (!lock) {
        return false;
    }
    const KeptFile file = knownFoldersFile(data);
    Patience patience;
    const auto before = readFolders(file, lock.get(), patience); // sets aside what is damaged
    if (!before) {
        return false;
    }
    folders = withoutRepeats(folders);
    const std::vector<std::u16string> own = folders;
    const bool isGiven = given && given->dataFolder == DataFolder::timesChosen();
    if (isGiven && given->folders != before->folders) {
        folders = merged(before->folders, given->folders, own);
    }
    if (before->folders != folders && !replaceWith(file, writeKnownFolders(folders), patience)) {
        return false;
    }
    if (isGiven) {
        given->folders = own;
    }
    return true;
}

} // namespace

bool changeKnownFolders(const DataFolder& data, const StoreLock& lock, const FolderChanges& changes,
                        Patience& patience)
{
    if (changes.added.empty() && changes.removed.empty()) {
        return true;
    }
    const KeptFile file = knownFoldersFile(data);
    const auto before = readFolders(file, &lock, patience);
    if (!before) {
        return false;
    }
    const auto removed = keysOf(changes.removed);
    std::vector<std::u16string> after;
    for (const std::u16string& folder : before->folders) {
        if (!removed.contains(folderKey(folder))) {
            after.push_back(folder);
        }
    }
    after.insert(after.end(), changes.added.begin(), changes.added.end());
    after = withoutRepeats(after);
    return after == before->folders || replaceWith(file, writeKnownFolders(after), patience);
}

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
