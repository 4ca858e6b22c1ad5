// Where the store keeps its files.
#pragma once

#include "lornix/disk/file.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace lornix {

/// The folder in use and the names of what is in it. Cheap to copy; stays as it is when the host chooses another.
class DataFolder {
public:
    /// The folder in use. Empty when there is none, which has been reported then.
    static DataFolder current();

    /// Path of the folder in use, for any thread; empty when there is none.
    static std::wstring currentRoot();

    explicit DataFolder(std::wstring root)
        : root_(std::move(root))
    {
    }

    /// How often a host has chosen a folder. What was read before may be of another one.
    static std::uint32_t timesChosen();

    bool isKnown() const { return !root_.empty(); }
    const std::wstring& root() const { return root_; }
    std::wstring rulesFolder() const { return root_ + L"\\rules"; }
    std::wstring rulesFile(std::u16string_view folderKey) const;
    std::wstring knownFoldersFile() const { return root_ + L"\\known-folders.txt"; }
    std::wstring trackedRulesFile() const { return root_ + L"\\tracked-rules.txt"; }
    std::wstring setAsideFolder() const { return root_ + L"\\set-aside"; }
    std::wstring lockFile() const { return root_ + L"\\lornix.lock"; }

    /// Makes the folders that are missing.
    DWORD make() const;

private:
    std::wstring root_;
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
    DWORD error() const { return error_; }

private:
    DWORD error_ = ERROR_SUCCESS; // set while the file is opened
    Handle file_;
};

} // namespace lornix
