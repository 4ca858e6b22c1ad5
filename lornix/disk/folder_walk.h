// Walking a folder tree.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace lornix {

/// Gives the files of a folder and of all folders below it, one after the other.
/// Links and mount points inside are not entered; what vanishes or denies access meanwhile is left out. Uses no
/// recursion and one open search at a time, so the depth of a tree is only limited by the length of paths.
class FolderWalk {
public:
    /// @param folder  may itself be a link: it was named.
    explicit FolderWalk(const std::wstring& folder);
    FolderWalk(const FolderWalk&) = delete;
    FolderWalk& operator=(const FolderWalk&) = delete;
    ~FolderWalk();

    /// 0, or the platform error when the folder itself cannot be read.
    DWORD error() const { return error_; }

    /// Goes to the next file. @return false after the last.
    bool next();

    /// Size of the file in bytes, as its folder states it.
    LONGLONG size() const;

    /// Path of the file in the form that knows no limit of length. Valid until the next step.
    const std::wstring& path();

private:
    /// A folder still to be read: the last part of its name lies in names_.
    struct Pending {
        std::size_t parentLength;
        std::size_t nameStart;
    };

    bool open();
    bool openPending();

    std::wstring path_;            // the folder being read, then its file when asked for
    std::size_t folderLength_ = 0; // of the part of path_ that is the folder
    std::wstring names_;           // of the pending folders, end to end
    std::vector<Pending> pending_;
    HANDLE search_ = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAW found_{};
    bool foundIsNew_ = false;
    DWORD error_ = ERROR_SUCCESS;
};

} // namespace lornix
