#include "lornix/disk/data_folder.h"

#include "lornix/disk/environment.h"
#include "lornix/last_error.h"
#include "lornix_host.h"

#include <shlobj.h>

#include <memory>
#include <mutex>

namespace lornix {
namespace {

constexpr const wchar_t* kVariable = L"LORNIX_DATA";
constexpr const wchar_t* kMaker = L"\\Vantrel";
constexpr const wchar_t* kProduct = L"\\lornix";

std::mutex guard;    // accounts are asked for on other threads, and their file may stand in the folder
std::wstring chosen; // by the host or the environment; empty until one of them is asked
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
    static const std::wstring folder = [] {
        wchar_t common[MAX_PATH] = L"";
        return FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, common))
                   ? std::wstring()
                   : common + std::wstring(kMaker);
    }();
    return folder;
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

void removeLeftovers(const std::wstring& folder)
{
    const std::wstring start = longPath(folder) + L'\\';
    WIN32_FIND_DATAW found{};
    const HANDLE first = FindFirstFileW(temporaryFor(start + L'*').c_str(), &found);
    if (first == INVALID_HANDLE_VALUE) {
        return;
    }
    const Owned<HANDLE, FindClose> search(first);
    do {
        // The pattern also finds what only the short name of a file ends with.
        if (std::wstring_view(found.cFileName).ends_with(kTemporary)) {
            DeleteFileW((start + found.cFileName).c_str());
        }
    } while (FindNextFileW(search.get(), &found));
}

} // namespace

bool DataFolder::hold()
{
    m_held.clear();
    for (const std::wstring& folder : {makersFolder(), m_root}) {
        auto held = std::make_shared<const HeldFolder>(holdFolder(folder));
        const bool isMissing = held->error == ERROR_FILE_NOT_FOUND || held->error == ERROR_PATH_NOT_FOUND;
        if (isMissing) {
            return true; // then there are no files either
        }
        if (!held->isOurs) {
            return false;
        }
        m_held.push_back(std::move(held));
    }
    return true;
}

DataFolder DataFolder::find(std::wstring& problem)
{
    DataFolder folder;
    {
        const std::lock_guard lock(guard);
        if (chosen.empty()) {
            chosen = fromEnvironment();
        }
        folder.m_root = chosen;
    }
    if (!folder.m_root.empty()) {
        return folder;
    }
    const std::wstring makers = makersFolder();
    if (makers.empty()) {
        problem = L"There is no folder to keep the rules in: the system names none for application data.";
        return folder;
    }
    // Every user can make folders there, also before this product does, and a link to anywhere.
    folder.m_root = makers + kProduct;
    folder.m_isGuarded = true;
    if (!folder.hold()) {
        problem = L"The data folder \"" + folder.m_root +
                  L"\" is not used: it or the one above belongs to somebody who is no administrator, can be "
                  L"changed by others, is a link, or does not let itself be looked at.";
        return DataFolder();
    }
    return folder;
}

DataFolder DataFolder::current()
{
    std::wstring problem;
    DataFolder folder = find(problem);
    if (!problem.empty()) {
        report(problem);
    }
    return folder;
}

DataFolder DataFolder::currentQuietly()
{
    std::wstring problem;
    return find(problem);
}

std::uint32_t DataFolder::timesChosen()
{
    const std::lock_guard lock(guard);
    return choices;
}

DWORD DataFolder::make(bool withSetAside)
{
    if (!m_isGuarded) {
        return makeFolder(withSetAside ? setAsideFolder() : m_root);
    }
    for (const std::wstring& folder : {makersFolder(), m_root}) {
        if (const DWORD error = makeGuardedFolder(folder, Readers::kEverybody); error != ERROR_SUCCESS) {
            return error;
        }
    }
    // Somebody else may have been quicker.
    if (!hold()) {
        return ERROR_ACCESS_DENIED;
    }
    return withSetAside ? makeGuardedFolder(setAsideFolder(), Readers::kAdministrators) : ERROR_SUCCESS;
}

StoreLock::StoreLock(const DataFolder& folder)
    : m_file([&] {
        // Whoever may open it may hold it, and hold up everybody who stores.
        Protection protection(Readers::kAdministrators);
        Handle file =
            openPlain(folder.lockFile(), GENERIC_READ | GENERIC_WRITE,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      folder.isGuarded() ? protection.get() : nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL);
        m_error = file ? ERROR_SUCCESS : GetLastError();
        return file;
    }())
{
    Patience patience(Patience::For::kTurn);
    for (OVERLAPPED start{}; m_error == ERROR_SUCCESS; start = {}) {
        if (LockFileEx(m_file.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &start)) {
            patience.giveBack();
            // Nobody else writes now, so whatever is half written was left behind.
            removeLeftovers(folder.root());
            return;
        }
        const DWORD error = GetLastError() == ERROR_IO_PENDING ? ERROR_LOCK_VIOLATION : GetLastError();
        m_error = patience.waitFor(error) ? ERROR_SUCCESS : error;
    }
}

StoreLock::~StoreLock()
{
    if (m_error == ERROR_SUCCESS) {
        OVERLAPPED start{};
        UnlockFileEx(m_file.get(), 0, 1, 0, &start);
    }
}

} // namespace lornix

int lornixSetDataFolder(const wchar_t* folder)
{
    using namespace lornix;
    return reporting(0, [&] {
        const std::wstring path = withoutSlashAtEnd(folder == nullptr ? L"" : folder);
        if (folder != nullptr) {
            if (!isAbsolute(path)) {
                report(L"\"" + path + L"\" is no absolute path.");
                return 0;
            }
            if (const DWORD error = makeFolder(path); error != ERROR_SUCCESS) {
                report(L"The folder \"" + path + L"\" cannot be used: " + reasonOf(error));
                return 0;
            }
        }
        const std::lock_guard lock(guard);
        chosen = path;
        ++choices;
        Patience::restore();
        return 1;
    });
}

const wchar_t* lornixDataFolder(void)
{
    // Leaves the reports of the last call alone.
    static std::wstring told;
    try {
        told = lornix::DataFolder::currentQuietly().root();
        return told.c_str();
    } catch (const std::bad_alloc&) {
        return L"";
    }
}
