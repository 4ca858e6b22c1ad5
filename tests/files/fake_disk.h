// Drives and folders that exist only for one module.
#pragma once

#include "tests/support/import_patch.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Takes the place of the platform's drives, folders and shell icons for one module while it lives; one at a time.
///
/// A path that is no folder here does not exist. The icon of a path is 10, open 11; of a path ending in ".exe\" 20 and
/// 21.
class FakeDisk {
public:
    struct Entry {
        std::wstring name;
        DWORD attributes = FILE_ATTRIBUTE_ARCHIVE;
    };

    explicit FakeDisk(HMODULE module);
    ~FakeDisk();
    FakeDisk(const FakeDisk&) = delete;
    FakeDisk& operator=(const FakeDisk&) = delete;

    /// Adds a drive, "C:\", with its file-system flags.
    void addDrive(const std::wstring& drive, DWORD flags = FILE_NAMED_STREAMS);
    /// Adds a drive without a medium.
    void addEmptyDrive(const std::wstring& drive);
    /// Adds or replaces a folder, "C:\Data" or "C:\"; entries come in the given order.
    void setFolder(const std::wstring& folder, std::vector<Entry> entries);

    /// What the module asked for since the last time: "find C:\*.*", "volume C:\", "icon 101 C:\", ...
    std::vector<std::string> takeCalls();
    int calls(const std::string& beginning) const;

    /// Searches that were opened and not closed.
    int openSearches() const;
    /// Icons that were handed out and not destroyed.
    int openIcons() const;

    std::function<void()> onCall;              ///< run at each call
    bool failDrives = false;                   ///< GetLogicalDriveStringsW gives 0
    bool failImages = false;                   ///< SHGetFileInfoW gives no system image list
    std::function<bool(UINT flags)> failIcons; ///< for which SHGetFileInfoW gives no icon
    bool nulIsADevice = false;     ///< a search for "path\nul" gives 1, whether or not there is such a path
    HANDLE searchAnswer = nullptr; ///< what FindFirstFileW gives in place of a search, if anything

    struct State;

private:
    std::unique_ptr<State> m_state;
    std::vector<std::unique_ptr<ImportPatch>> m_patches;
};

/// A file, for the lists of entries.
inline FakeDisk::Entry file(std::wstring name, DWORD more = 0)
{
    return {std::move(name), FILE_ATTRIBUTE_ARCHIVE | more};
}
inline FakeDisk::Entry folder(std::wstring name, DWORD more = 0)
{
    return {std::move(name), FILE_ATTRIBUTE_DIRECTORY | more};
}
