#include "lornix/known_folders.h"

#include "lornix/folder_key.h"
#include "lornix/kept_file.h"
#include "lornix/last_error.h"
#include "lornix/lornix_host.h"
#include "lornix/rule_file.h"
#include "lornix/wide_text.h"
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

PathList* loadFolders()
{
    return reporting<PathList*>(nullptr, []() -> PathList* {
        const DataFolder data = DataFolder::current();
        if (!data.isKnown()) {
            return nullptr;
        }
        Patience patience = Patience::toRead();
        const auto content = readFolders(knownFoldersFile(data), nullptr, patience);
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
    return before->folders == folders || replaceWith(file, writeKnownFolders(folders), patience);
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
    std::unordered_set<std::u16string> removed;
    for (const std::u16string& folder : changes.removed) {
        removed.insert(folderKey(folder));
    }
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
    return lornix::loadFolders();
}

PathList* lornixKnownFolders(void)
{
    return lornix::loadFolders();
}

void storeKnownPaths(const PathList* list)
{
    lornix::reporting(false, [&] { return lornix::storeFolders(list); });
}

void lornixFreeFolders(PathList* folders)
{
    freePathList(folders);
}
