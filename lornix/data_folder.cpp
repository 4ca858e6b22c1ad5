#include "lornix/data_folder.h"

#include "lornix/environment.h"
#include "lornix/folder_key.h"
#include "lornix/last_error.h"
#include "lornix/lornix_host.h"

#include <shlobj.h>

#include <mutex>

namespace lornix {
namespace {

constexpr const wchar_t* kVariable = L"LORNIX_DATA";
constexpr const wchar_t* kDefault = L"\\Vantrel\\lornix";
constexpr DWORD kLockStep = 20; // milliseconds
constexpr DWORD kLockLongest = 15000;

std::mutex guard;    // accounts are asked for on other threads, and their file may stand in the folder
std::wstring chosen; // empty until asked for

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

std::wstring defaultFolder()
{
    if (std::wstring folder = fromEnvironment(); !folder.empty()) {
        return folder;
    }
    wchar_t common[MAX_PATH] = L"";
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, common))) {
        return {};
    }
    return common + std::wstring(kDefault);
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
    WIN32_FIND_DATAW found{};
    const std::wstring pattern = longPath(folder) + L"\\*.tmp";
    HANDLE search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        DeleteFileW((longPath(folder) + L'\\' + found.cFileName).c_str());
    } while (FindNextFileW(search, &found));
    FindClose(search);
}

} // namespace

DataFolder DataFolder::current()
{
    const std::lock_guard lock(guard);
    if (chosen.empty()) {
        chosen = defaultFolder();
    }
    if (chosen.empty()) {
        report(L"There is no folder to keep the rules in: the system names none for application data.");
    }
    return DataFolder(chosen);
}

std::wstring DataFolder::rulesFile(std::u16string_view folderKey) const
{
    const std::string name = ruleFileName(folderKey);
    return rulesFolder() + L'\\' + std::wstring(name.begin(), name.end());
}

DWORD DataFolder::make() const
{
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
        return 1;
    });
}

const wchar_t* lornixDataFolder(void)
{
    // Leaves the reports of the last call alone.
    try {
        const std::lock_guard lock(lornix::guard);
        if (lornix::chosen.empty()) {
            lornix::chosen = lornix::defaultFolder();
        }
        return lornix::chosen.c_str();
    } catch (const std::bad_alloc&) {
        return L"";
    }
}
