// Where the store keeps its files.
#pragma once

#include "lornix/disk/guarded_folder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lornix {

/// The folder in use and the names of what is in it. Cheap to copy; stays as it is when the host chooses another.
/// The folder that the store chooses by itself is looked at on every use, and cannot be moved as long as one lives.
class DataFolder {
public:
    /// The folder in use. Empty when there is none, which has been reported then.
    static DataFolder current();

    /// The same for any thread, which reports nothing.
    static DataFolder currentQuietly();

    /// How often a host has chosen a folder. What was read before may be of another one.
    static std::uint32_t timesChosen();

    bool isKnown() const { return !m_root.empty(); }
    const std::wstring& root() const { return m_root; }
    std::wstring path(std::wstring_view name) const { return m_root + L'\\' + std::wstring(name); }
    std::wstring setAsideFolder() const { return path(L"set-aside"); }
    std::wstring lockFile() const { return path(L"lornix.lock"); }

    /// Makes the folders that are missing. The one for what is set aside only `withSetAside`.
    DWORD make(bool withSetAside = false);

    /// Whether users must not open what only administrators are to read: in a folder that a host or the environment
    /// names, who may do what is their business.
    bool isGuarded() const { return m_isGuarded; }

    /// False while it is missing: what somebody puts there right now has not been looked at.
    bool mayHoldFiles() const { return !m_isGuarded || m_held.size() == 2; }

private:
    /// @param problem  receives why there is none.
    static DataFolder find(std::wstring& problem);

    /// @return false when another than the administration may change one of the folders.
    bool hold();

    std::wstring m_root;
    bool m_isGuarded = false;
    std::vector<std::shared_ptr<const HeldFolder>> m_held;
};

/// The end of a name that nobody else gives to a file: the data folder may be one that others use too.
constexpr std::wstring_view kTemporary = L".lornix-new";

/// Name of the file that is written before it takes the place of another.
inline std::wstring temporaryFor(const std::wstring& target)
{
    return target + std::wstring(kTemporary);
}

/// One process at a time changes the files. Ends with the object, and with the process, however that ends.
class StoreLock {
public:
    /// Waits for other processes, for some seconds. Removes what a killed process left half written.
    explicit StoreLock(const DataFolder& folder);
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;
    ~StoreLock();

    /// 0, or the platform error that kept the lock away.
    DWORD error() const { return m_error; }

private:
    DWORD m_error = ERROR_SUCCESS; // set while the file is opened
    Handle m_file;
};

} // namespace lornix
