// Walking a folder tree.
#pragma once

#include "lornix/disk/file.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lornix {

/// Things that could not be read: how many, and the first of them with its error.
struct Unread {
    std::uint64_t count = 0;
    std::int64_t bytes = 0;
    std::wstring first;
    DWORD error = ERROR_SUCCESS;

    void add(std::wstring_view path, std::int64_t size, DWORD why);
    void add(const Unread& others);
    friend bool operator==(const Unread&, const Unread&) = default;
};

/// Adds sizes; the sum stays at the largest number instead of turning negative.
void addSize(std::int64_t& sum, std::int64_t size);

/// What a walk has to tell in all. Two that found the same went through a tree that nobody changed meanwhile.
struct Walked {
    std::uint64_t files = 0;
    std::int64_t bytes = 0;
    std::int64_t newest = 0; ///< change of a file or a folder, of its owner too
    std::uint64_t changes =
        0;         ///< the times of all changes together: one may lie in the future and cover the others
    Unread unread; ///< folders
    std::uint64_t links = 0;
    DWORD error = ERROR_SUCCESS; ///< why the folder itself cannot be read

    friend bool operator==(const Walked&, const Walked&) = default;
};

/// Gives the files of a folder and of all folders below it, one after the other.
/// Links and mount points inside are not entered but counted, and so is what cannot be read; what vanishes meanwhile
/// is left out. Who may read for a backup enters what denies him access. Uses no recursion and keeps one folder open
/// at a time, so the depth of a tree is only limited by the length of paths.
class TreeWalk {
public:
    /// @param folder  may itself be a link: it was named.
    explicit TreeWalk(const std::wstring& folder);
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    /// Goes to the next file. @return false after the last.
    bool next();

    /// Size of the file in bytes, as its folder states it.
    std::int64_t size() const { return m_entry->EndOfFile.QuadPart; }

    /// Path of the file in the form that knows no limit of length. Valid until the next step.
    const std::wstring& path();

    /// Ends it before its time.
    void close();

    /// Of the files so far.
    const Walked& walked() const { return m_walked; }

private:
    /// A folder still to be read.
    struct Pending {
        std::size_t parentLength; ///< of m_path, when it is its turn
        std::wstring name;
    };

    DWORD open(const wchar_t* path, DWORD flags);
    DWORD readMore();
    bool openPending();
    bool step();
    void noteChange();
    void noteUnread(DWORD error);
    std::wstring_view name() const;

    std::wstring m_path;            // the folder being read, then its file when asked for
    std::size_t m_folderLength = 0; // of the part of m_path that is the folder
    std::vector<Pending> m_pending;
    Handle m_folder;
    std::vector<std::uint64_t> m_buffer; // entries as the platform gives them
    const FILE_ID_BOTH_DIR_INFO* m_entry = nullptr;
    const FILE_ID_BOTH_DIR_INFO* m_next = nullptr; // behind it in the buffer
    Walked m_walked;
};

} // namespace lornix
