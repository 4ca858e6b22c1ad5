#include "lornix/disk/data_folder.h"

#include "lornix/disk/environment.h"
#include "lornix/disk/guarded_folder.h"
#include "lornix/last_error.h"
#include "lornix/text/folder_key.h"
#include "lornix_host.h"

#include <shlobj.h>

#include <memory>
#include <mutex>

namespace lornix {
namespace {

constexpr const wchar_t* kVariable = L"LORNIX_DATA";
constexpr const wchar_t* kMaker = L"\\Vantrel";
constexpr const wchar_t* kProduct = L"\\lornix";
constexpr DWORD kLockStep = 20; // milliseconds
constexpr DWORD kLockLongest = 15000;

std::mutex guard;    // accounts are asked for on other threads, and their file may stand in the folder
std::wstring chosen; // empty until asked for
std::uint32_t choices = 0;

std::wstring withoutSlashAtEnd(std::wstring path)
{
    while (path.size() > 3 && (path.back() == L'\\' || path.back() == L'/')) {
        path.pop_back();
    }
    return path;
}

std::wstring fromEnvironment()
{
    const std::wstring value = environmentValue(kVariable);
    if (value.empty()) {
        return {};
    }
    // Meant from where the process stands now, wherever it goes later.
    std::wstring full(GetFullPathNameW(value.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(value.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return withoutSlashAtEnd(full);
}

/// The folder of this product's maker for data common to all users; empty when the system has no such place.
std::wstring makersFolder()
{
    wchar_t common[MAX_PATH] = L"";
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, common))) {
        return {};
    }
    return common + std::wstring(kMaker);
}

/// @param problem  receives why there is none.
/// @return the folder that is used unless a host chooses one; empty when there is none.
std::wstring defaultFolder(std::wstring& problem)
{
    if (std::wstring folder = fromEnvironment(); !folder.empty()) {
        return folder;
    }
    const std::wstring makers = makersFolder();
    if (makers.empty()) {
        problem = L"There is no folder to keep the rules in: the system names none for application data.";
        return {};
    }
    // Every user can make folders there, also before this product does.
    const std::wstring folder = makers + kProduct;
    if (!isOurs(folder)) {
        problem =
            L"The data folder \"" + folder +
            L"\" is not used: it belongs to somebody who is no administrator, or its owner cannot be told.";
        return {};
    }
    return folder;
}

/// @param problem  receives why there is no folder in use.
std::wstring rootInUse(std::wstring& problem)
{
    const std::lock_guard lock(guard);
    if (chosen.empty()) {
        chosen = defaultFolder(problem);
    }
    return chosen;
}

bool isAbsolute(const std::wstring& path)
{
    const auto isSlash = [](wchar_t unit) {
        return unit == L'\\' || unit == L'/';
    };
    const bool drive = path.size() >= 3 && path[1] == L':' && isSlash(path[2]);
    const bool server = path.size() >= 3 && isSlash(path[0]) && isSlash(path[1]);
    return drive || server;
}

DWORD lockFileOf(const DataFolder& folder, HANDLE& opened)
{
    opened = CreateFileW(longPath(folder.lockFile()).c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
    return opened == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS;
}

void removeLeftovers(const std::wstring& folder)
{
    const std::wstring start = longPath(folder) + L'\\';
    WIN32_FIND_DATAW found{};
    const HANDLE first = FindFirstFileW(temporaryFor(start + L'*').c_str(), &found);
    if (first == INVALID_HANDLE_VALUE) {
        return;
    }
    const std::unique_ptr<void, decltype(&FindClose)> search(first, FindClose);
    do {
        // The pattern also finds what only the short name of a file ends with.
        if (std::wstring_view(found.cFileName).ends_with(kTemporary)) {
            DeleteFileW((start + found.cFileName).c_str());
        }
    } while (FindNextFileW(search.get(), &found));
}

} // namespace

DataFolder DataFolder::current()
{
    std::wstring problem;
    DataFolder folder(rootInUse(problem));
    if (!problem.empty()) {
        report(problem);
    }
    return folder;
}

std::wstring DataFolder::currentRoot()
{
    std::wstring problem;
    return rootInUse(problem);
}

std::uint32_t DataFolder::timesChosen()
{
    const std::lock_guard lock(guard);
    return choices;
}

std::wstring DataFolder::rulesFile(std::u16string_view folderKey) const
{
    const std::string name = ruleFileName(folderKey);
    return rulesFolder() + L'\\' + std::wstring(name.begin(), name.end());
}

DWORD DataFolder::make() const
{
    if (const std::wstring makers = makersFolder(); !makers.empty() && root_ == makers + kProduct) {
        for (const std::wstring& folder : {makers, root_}) {
            if (const DWORD error = makeGuardedFolder(folder); error != ERROR_SUCCESS) {
                return error;
            }
        }
    }
    return makeFolder(rulesFolder());
}

StoreLock::StoreLock(const DataFolder& folder)
    : file_([&] {
        HANDLE opened = INVALID_HANDLE_VALUE;
        error_ = lockFileOf(folder, opened);
        return opened;
    }())
{
    if (error_ != ERROR_SUCCESS) {
        return;
    }
    for (DWORD waited = 0;; waited += kLockStep) {
        OVERLAPPED start{};
        if (LockFileEx(file_.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &start)) {
            error_ = ERROR_SUCCESS;
            break;
        }
        error_ = GetLastError();
        const bool passes = error_ == ERROR_LOCK_VIOLATION || error_ == ERROR_IO_PENDING;
        if (!passes || waited >= kLockLongest) {
            return;
        }
        Sleep(kLockStep);
    }
    // Nobody else writes now, so whatever is half written was left behind.
    removeLeftovers(folder.root());
    removeLeftovers(folder.rulesFolder());
}

StoreLock::~StoreLock()
{
    if (file_.isOpen() && error_ == ERROR_SUCCESS) {
        OVERLAPPED start{};
        UnlockFileEx(file_.get(), 0, 1, 0, &start);
    }
}

} // namespace lornix

int lornixSetDataFolder(const wchar_t* folder)
{
    using namespace lornix;
    return reporting(0, [&] {
        if (folder == nullptr) {
            const std::lock_guard lock(guard);
            chosen.clear();
            ++choices;
            return 1;
        }
        const std::wstring path = folder;
        if (!isAbsolute(path)) {
            report(L"\"" + path + L"\" is no absolute path.");
            return 0;
        }
        if (const DWORD error = makeFolder(withoutSlashAtEnd(path)); error != ERROR_SUCCESS) {
            report(L"The folder \"" + path + L"\" cannot be used: " + reasonOf(error));
            return 0;
        }
        const std::lock_guard lock(guard);
        chosen = withoutSlashAtEnd(path);
        ++choices;
        return 1;
    });
}

const wchar_t* lornixDataFolder(void)
{
    // Leaves the reports of the last call alone.
    try {
        std::wstring problem;
        lornix::rootInUse(problem);
        return lornix::chosen.c_str();
    } catch (const std::bad_alloc&) {
        return L"";
    }
}
