// The exports about sizes: bytes under a folder, of all files and of the files of some accounts.
#include "lornix/disk/file.h"
#include "lornix/faults.h"
#include "lornix/last_error.h"
#include "lornix/sid.h"
#include "lornix/sizes/backup_right.h"
#include "lornix/sizes/measured_trees.h"
#include "lornix/text/folder_key.h"
#include "lornix/text/wide_text.h"
#include "store/lornix.h"

#include <algorithm>
#include <utility>

namespace lornix {
namespace {

constexpr ULONGLONG kMoment = 1000; // milliseconds

MeasuredTrees trees;

/// A folder to be measured.
struct Named {
    std::wstring path;
    std::u16string key; ///< the same for every spelling

    explicit Named(const wchar_t* folder)
        : path(folder)
        , key(folderKey(fromWide(longPath(path))))
    {
    }

    /// When the folder itself was changed: cheap, and most changes of a small tree show there.
    std::uint64_t time() const
    {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        GetFileAttributesExW(longPath(path).c_str(), GetFileExInfoStandard, &data);
        return joined(data.ftLastWriteTime);
    }
};

std::wstring counted(std::uint64_t count, const wchar_t* one, const wchar_t* many)
{
    return std::to_wstring(count) + L' ' + (count == 1 ? one : many);
}

void tell(const Walked& walked, const Named& folder)
{
    if (walked.error != ERROR_SUCCESS) {
        report(L"The folder " + quoted(folder.path) + L" cannot be measured: " + reasonOf(walked.error));
    }
    if (walked.links != 0) {
        // Nearly every disk has some, and what they lead to is measured where it stands.
        ODS("lornix: %ls under \"%ls\" not followed\n", counted(walked.links, L"link", L"links").c_str(),
            folder.path.c_str());
    }
    if (const Unread& unread = walked.unread; unread.count != 0) {
        report(counted(unread.count, L"folder", L"folders") + L" under " + quoted(folder.path) +
               L" could not be read and did not count, first " + quoted(unread.first) + L": " +
               reasonOf(unread.error));
    }
}

void tellOwners(const Unread& unread, const Named& folder)
{
    if (unread.count != 0) {
        report(L"The owner of " + counted(unread.count, L"file", L"files") + L" under " +
               quoted(folder.path) + L", with " +
               counted(static_cast<std::uint64_t>(unread.bytes), L"byte", L"bytes") +
               L", could not be read, first of " + quoted(unread.first) + L": " + reasonOf(unread.error));
    }
}

/// @param use  goes to the end of the walk.
template <class Use>
Walked walk(const Named& folder, Use use)
{
    Walked walked;
    withBackupRight([&] {
        TreeWalk tree(folder.path);
        runThen([&] { use(tree); }, [&] { tree.close(); });
        walked = tree.walked();
    });
    return walked;
}

Walked lookAt(const Named& folder)
{
    return walk(folder, [](TreeWalk& tree) {
        while (tree.next()) {
        }
    });
}

/// @return what the size was just told from, once, unless the folder was changed since; otherwise a new look.
Walked lookAgain(MeasuredTree& tree, const Named& folder)
{
    const auto last = std::exchange(tree.last, std::nullopt);
    return last && last->folderTime == folder.time() && GetTickCount64() - last->ticks <= kMoment
               ? last->walked
               : lookAt(folder);
}

bool isGiven(const wchar_t* folder)
{
    const bool given = folder != nullptr && *folder != L'\0';
    if (!given) {
        report(L"No folder was given to measure.");
    }
    return given;
}

std::vector<std::string> ownersIn(const SidList& list)
{
    std::vector<std::string> owners;
    void* const* sids = list.sids;
    for (std::int32_t i = 0; i < list.count; ++i) {
        if (isSid(sids[i])) {
            owners.emplace_back(sidKey(sids[i]));
        }
    }
    std::sort(owners.begin(), owners.end());
    owners.erase(std::unique(owners.begin(), owners.end()), owners.end());
    return owners;
}

} // namespace
} // namespace lornix

int64_t getRealSize(const wchar_t* folder)
{
    using namespace lornix;
    return reporting<int64_t>(0, [&]() -> int64_t {
        if (!isGiven(folder)) {
            return 0;
        }
        const Named named(folder);
        const std::uint64_t time = named.time();
        const Walked walked = lookAt(named);
        if (MeasuredTree* const tree = trees.find(named.key)) {
            tree->last = {time, GetTickCount64(), walked};
        }
        tell(walked, named);
        return walked.bytes;
    });
}

int64_t getRealSizeByOwner(const wchar_t* folder, const SidList* accounts)
{
    using namespace lornix;
    if (accounts == nullptr) {
        return 0;
    }
    return reporting<int64_t>(0, [&]() -> int64_t {
        const std::vector<std::string> owners = ownersIn(*accounts);
        if (owners.empty() || !isGiven(folder)) {
            return 0;
        }
        const Named named(folder);
        MeasuredTree* const tree = trees.find(named.key);
        Walked walked =
            tree == nullptr ? Walked() : lookAgain(*tree, named); // of another a look is of no use
        OwnedBytes fresh;
        const OwnedBytes* owned = tree != nullptr && tree->walked == walked ? &tree->owned : nullptr;
        if (owned == nullptr) {
            walked = walk(named, [&](TreeWalk& files) { fresh = sumOwners(files); });
            owned =
                walked.error == ERROR_SUCCESS ? &trees.keep({named.key, walked, std::move(fresh)}) : &fresh;
        }
        tell(walked, named);
        tellOwners(owned->unread, named);
        return owned->of(owners);
    });
}
