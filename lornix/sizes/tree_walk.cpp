#include "lornix/sizes/tree_walk.h"

#include "lornix/disk/file.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace lornix {
namespace {

constexpr std::size_t kBufferSize = 1 << 16; // what a server on the network gives at once

bool isGone(DWORD error)
{
    // ERROR_DIRECTORY: a file stands in its place now.
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_DIRECTORY;
}

/// Whether a folder leads elsewhere. One whose files lie on a server until they are read has the same attribute, and is
/// itself.
bool isLink(const FILE_ID_BOTH_DIR_INFO& folder)
{
    if ((folder.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
        return false;
    }
    // With that attribute this is not a size but what it stands for. Without any it may lead anywhere, in a circle too.
    const DWORD tag = folder.EaSize;
    return tag == 0 || IsReparseTagNameSurrogate(tag);
}

} // namespace

void Unread::add(std::wstring_view path, std::int64_t size, DWORD why)
{
    if (count++ == 0) {
        first = path;
        error = why;
    }
    addSize(bytes, size);
}

void Unread::add(const Unread& others)
{
    if (count == 0) {
        *this = others;
    } else {
        count += others.count;
        addSize(bytes, others.bytes);
    }
}

void addSize(std::int64_t& sum, std::int64_t size)
{
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    sum = size > kMost - sum ? kMost : sum + size;
}

TreeWalk::TreeWalk(const std::wstring& folder)
    : m_path(longPath(folder))
    , m_buffer(kBufferSize / sizeof(std::uint64_t))
{
    while (m_path.ends_with(L'\\')) {
        m_path.pop_back();
    }
    m_folderLength = m_path.size();
    DWORD error = open((m_path + L'\\').c_str(), 0); // a drive without its backslash would be the device
    if (error == ERROR_SUCCESS) {
        error = readMore();
    }
    if (error != ERROR_SUCCESS) {
        close();
        m_walked.error = error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
    }
}

DWORD TreeWalk::open(const wchar_t* path, DWORD flags)
{
    // Meant for backups: a right to those then opens what the folder's own list of rights denies.
    m_folder.reset(CreateFileW(path, FILE_LIST_DIRECTORY | SYNCHRONIZE,
                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                               FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
    return m_folder ? ERROR_SUCCESS : GetLastError();
}

void TreeWalk::close()
{
    m_folder.reset();
    m_next = nullptr;
}

DWORD TreeWalk::readMore()
{
    // A file can be opened too; not every system says why it then has no entries.
    SetLastError(ERROR_DIRECTORY);
    if (GetFileInformationByHandleEx(m_folder.get(), FileIdBothDirectoryInfo, m_buffer.data(), kBufferSize)) {
        m_next = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(m_buffer.data());
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    return error == ERROR_INVALID_PARAMETER ? ERROR_DIRECTORY : error;
}

bool TreeWalk::openPending()
{
    while (!m_pending.empty()) {
        const Pending folder = std::move(m_pending.back());
        m_pending.pop_back();
        m_path.resize(folder.parentLength);
        m_path += L'\\' + folder.name;
        m_folderLength = m_path.size();
        // A link that took its place meanwhile is not followed.
        const DWORD error = open(m_path.c_str(), FILE_FLAG_OPEN_REPARSE_POINT);
        if (error == ERROR_SUCCESS) {
            return true;
        }
        if (!isGone(error)) {
            noteUnread(error);
        }
    }
    return false;
}

bool TreeWalk::step()
{
    if (m_next == nullptr) {
        if (const DWORD error = readMore(); error != ERROR_SUCCESS) {
            if (error != ERROR_NO_MORE_FILES && !isGone(error)) {
                m_path.resize(m_folderLength);
                noteUnread(error);
            }
            return false;
        }
    }
    m_entry = m_next;
    const auto* bytes = reinterpret_cast<const std::byte*>(m_entry) + m_entry->NextEntryOffset;
    m_next = m_entry->NextEntryOffset == 0 ? nullptr : reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(bytes);
    return true;
}

bool TreeWalk::next()
{
    while (m_folder || openPending()) {
        while (step()) {
            const bool isFolder = (m_entry->FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            if (!isFolder) {
                ++m_walked.files;
                addSize(m_walked.bytes, size());
                noteChange();
                return true;
            }
            if (name() == L"..") {
                continue;
            }
            noteChange();
            if (name() == L".") {
                continue;
            }
            if (isLink(*m_entry)) {
                ++m_walked.links;
                continue;
            }
            m_pending.push_back({m_folderLength, std::wstring(name())});
        }
        close();
    }
    return false;
}

void TreeWalk::noteChange()
{
    // Not every file system keeps a time of changes to what is not content.
    const std::int64_t change = std::max(m_entry->ChangeTime.QuadPart, m_entry->LastWriteTime.QuadPart);
    m_walked.newest = std::max(m_walked.newest, change);
    m_walked.changes += static_cast<std::uint64_t>(change);
}

void TreeWalk::noteUnread(DWORD error)
{
    m_walked.unread.add(m_path, 0, error);
}

std::wstring_view TreeWalk::name() const
{
    return {m_entry->FileName, m_entry->FileNameLength / sizeof(wchar_t)};
}

const std::wstring& TreeWalk::path()
{
    m_path.resize(m_folderLength);
    m_path += L'\\';
    m_path += name();
    return m_path;
}

} // namespace lornix
