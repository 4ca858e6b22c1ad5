#include "lornix/disk/file.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

namespace lornix {
namespace {

constexpr DWORD kStep = 10; // milliseconds

constexpr DWORD kLongest[] = {3000, 300, 15000};
constexpr ULONGLONG kPause = 1000; // calls that are further apart do not follow each other
constexpr DWORD kTail = 64;
constexpr DWORD kStoppedOnLink = 681; // as the platform says it; not every set of headers has its name

struct Waiting {
    DWORD waited = 0;
    ULONGLONG last = 0;
};
std::mutex guard; // files are read on other threads too
Waiting waiting[std::size(kLongest)];

/// Repeats a platform call until it works or the error is one that stays.
template <class Call>
DWORD persistently(Patience& patience, Call call)
{
    while (true) {
        if (call()) {
            patience.giveBack();
            return ERROR_SUCCESS;
        }
        if (const DWORD error = GetLastError(); !patience.waitFor(error)) {
            return error;
        }
    }
}

/// Where access is denied for a reason that no waiting helps against, tells the reason instead.
/// @param toWrite  whether the file was to be written.
DWORD settled(DWORD error, const std::wstring& path, bool toWrite)
{
    const DWORD attributes = error == ERROR_ACCESS_DENIED ? GetFileAttributesW(path.c_str()) : 0;
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return error;
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return ERROR_DIRECTORY;
    }
    return toWrite && (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? ERROR_WRITE_PROTECT : error;
}

/// @return 0 or a platform error.
DWORD writeAll(HANDLE file, std::string_view bytes)
{
    constexpr std::size_t kChunk = 1 << 24;
    while (!bytes.empty()) {
        DWORD written = 0;
        if (!WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kChunk)), &written,
                       nullptr))
        {
            return GetLastError();
        }
        if (written == 0) {
            return ERROR_DISK_FULL;
        }
        bytes.remove_prefix(written);
    }
    return FlushFileBuffers(file) ? ERROR_SUCCESS : GetLastError();
}

/// @param file  receives the open file.
DWORD openToRead(const std::wstring& path, Patience& patience, Handle& file)
{
    const DWORD error = persistently(patience, [&] {
        file = openPlain(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
        if (!file) {
            SetLastError(settled(GetLastError(), longPath(path), false));
        }
        return static_cast<bool>(file);
    });
    return error == ERROR_PATH_NOT_FOUND ? ERROR_FILE_NOT_FOUND : error;
}

DWORD readAt(HANDLE file, std::uint64_t offset, std::string& bytes)
{
    OVERLAPPED start{};
    start.Offset = static_cast<DWORD>(offset);
    start.OffsetHigh = static_cast<DWORD>(offset >> 32);
    DWORD read = 0;
    if (!ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, &start) &&
        GetLastError() != ERROR_HANDLE_EOF)
    {
        return GetLastError();
    }
    bytes.resize(read);
    return ERROR_SUCCESS;
}

DWORD takeStamp(HANDLE file, FileStamp& stamp)
{
    LARGE_INTEGER size{};
    FILETIME changed{};
    if (!GetFileSizeEx(file, &size) || !GetFileTime(file, nullptr, nullptr, &changed)) {
        return GetLastError();
    }
    stamp.size = static_cast<std::uint64_t>(size.QuadPart);
    stamp.changed = joined(changed);
    return ERROR_SUCCESS;
}

DWORD takeStampWithTail(HANDLE file, FileStamp& stamp)
{
    if (const DWORD error = takeStamp(file, stamp); error != ERROR_SUCCESS) {
        return error;
    }
    stamp.tail.resize(std::min<std::uint64_t>(kTail, stamp.size));
    return readAt(file, stamp.size - stamp.tail.size(), stamp.tail);
}

/// Sets the time of a file that was just written back by the smallest step: clocks of disks stand still for some
/// milliseconds, and whatever is changed in it from now on has a later time.
/// @return a stamp that no file has when the platform does not tell it.
FileStamp markUnique(HANDLE file, std::string_view bytes)
{
    FileStamp stamp;
    if (takeStamp(file, stamp) != ERROR_SUCCESS) {
        return {};
    }
    --stamp.changed;
    const FILETIME time{static_cast<DWORD>(stamp.changed), static_cast<DWORD>(stamp.changed >> 32)};
    stamp.tail = bytes.substr(bytes.size() - std::min<std::size_t>(kTail, bytes.size()));
    return SetFileTime(file, nullptr, nullptr, &time) ? stamp : FileStamp();
}

} // namespace

bool Patience::waitFor(DWORD error)
{
    // Denied also means: to be deleted as soon as somebody else closes it, or open where it is to be replaced.
    if (error != ERROR_SHARING_VIOLATION && error != ERROR_LOCK_VIOLATION && error != ERROR_ACCESS_DENIED) {
        return false;
    }
    const auto index = static_cast<std::size_t>(m_for);
    {
        const std::lock_guard lock(guard);
        const ULONGLONG now = GetTickCount64();
        Waiting& mine = waiting[index];
        if (now - mine.last > kPause) {
            mine.waited = 0;
        }
        mine.last = now;
        if (mine.waited >= kLongest[index]) {
            m_waited = 0; // in vain
            SetLastError(error);
            return false;
        }
        mine.waited += kStep;
        m_waited += kStep;
    }
    Sleep(kStep);
    return true;
}

void Patience::giveBack()
{
    const std::lock_guard lock(guard);
    Waiting& mine = waiting[static_cast<std::size_t>(m_for)];
    mine.waited -= std::min(mine.waited, std::exchange(m_waited, 0));
}

void Patience::restore()
{
    const std::lock_guard lock(guard);
    for (Waiting& each : waiting) {
        each.waited = 0;
    }
}

std::wstring longPath(const std::wstring& path)
{
    constexpr std::wstring_view kPrefix = L"\\\\?\\";
    if (path.starts_with(kPrefix)) {
        return path;
    }
    std::wstring full(path.size() + MAX_PATH, L'\0');
    DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length > full.size()) {
        full.resize(length);
        length = GetFullPathNameW(path.c_str(), length, full.data(), nullptr);
    }
    if (length == 0 || length > full.size()) {
        return path;
    }
    full.resize(length);
    if (full.starts_with(L"\\\\")) {
        return L"\\\\?\\UNC" + full.substr(1);
    }
    return std::wstring(kPrefix) + full;
}

Handle openPlain(const std::wstring& path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                 DWORD disposition, DWORD flags)
{
    const std::wstring name = longPath(path);
    Handle file(CreateFileW(name.c_str(), access, share, security, disposition,
                            flags | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!file) {
        return file;
    }
    // Not all that the platform tells of a file at once: that takes as long as opening it.
    FILE_BASIC_INFO known{};
    if (GetFileInformationByHandleEx(file.get(), FileBasicInfo, &known, sizeof known) &&
        (known.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
    {
        return file;
    }
    FILE_ATTRIBUTE_TAG_INFO found{}; // which some disks do not know
    const bool isLink =
        !GetFileInformationByHandleEx(file.get(), FileAttributeTagInfo, &found, sizeof found) ||
        IsReparseTagNameSurrogate(found.ReparseTag);
    if (isLink) {
        SetLastError(kStoppedOnLink);
        return Handle();
    }
    // A file that its disk keeps in another form, without its repeated parts, say.
    return Handle(CreateFileW(name.c_str(), access, share, nullptr, OPEN_EXISTING, flags, nullptr));
}

DWORD readFile(const std::wstring& path, std::string& bytes, Patience& patience, FileStamp* stamp)
{
    Handle file;
    if (const DWORD error = openToRead(path, patience, file); error != ERROR_SUCCESS) {
        return error;
    }
    FileStamp now;
    if (const DWORD error = takeStampWithTail(file.get(), now); error != ERROR_SUCCESS) {
        return error;
    }
    if (now.size > kLargestFile) {
        return ERROR_FILE_TOO_LARGE;
    }
    bytes.resize(now.size);
    const DWORD error = readAt(file.get(), 0, bytes);
    if (stamp != nullptr) {
        *stamp = std::move(now);
    }
    return error;
}

DWORD readStamp(const std::wstring& path, FileStamp& stamp, Patience& patience)
{
    Handle file;
    const DWORD error = openToRead(path, patience, file);
    return error != ERROR_SUCCESS ? error : takeStampWithTail(file.get(), stamp);
}

bool holdsText(const std::wstring& path, std::string_view text, Patience& patience, FileStamp& stamp)
{
    Handle file;
    if (openToRead(path, patience, file) != ERROR_SUCCESS ||
        takeStampWithTail(file.get(), stamp) != ERROR_SUCCESS || stamp.size != text.size())
    {
        return false;
    }
    constexpr std::size_t kPiece = 1 << 18; // small enough to be compared while it is near the processor
    std::string piece;
    for (std::size_t done = 0; done < text.size(); done += kPiece) {
        const std::string_view expected = text.substr(done, kPiece);
        piece.resize(expected.size());
        if (readAt(file.get(), done, piece) != ERROR_SUCCESS || piece != expected) {
            return false;
        }
    }
    return true;
}

DWORD writeFile(const std::wstring& path, std::string_view bytes, SECURITY_ATTRIBUTES* security,
                FileStamp* stamp)
{
    if (bytes.size() > kLargestFile) {
        return ERROR_FILE_TOO_LARGE;
    }
    DWORD error = ERROR_SUCCESS;
    {
        // Made new: what another has put there, a link above all, is never written to.
        const Handle file = openPlain(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, security,
                                      CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
        if (!file) {
            return GetLastError();
        }
        error = writeAll(file.get(), bytes);
        if (stamp != nullptr && error == ERROR_SUCCESS) {
            *stamp = markUnique(file.get(), bytes);
        }
    }
    if (error != ERROR_SUCCESS) {
        DeleteFileW(longPath(path).c_str());
    }
    return error;
}

DWORD replaceFile(const std::wstring& path, const std::wstring& temporary, std::string_view bytes,
                  SECURITY_ATTRIBUTES* security, Patience& patience, FileStamp* stamp)
{
    DeleteFileW(longPath(temporary).c_str());
    DWORD error = writeFile(temporary, bytes, security, stamp);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    const std::wstring from = longPath(temporary);
    const std::wstring to = longPath(path);
    error = persistently(patience, [&] {
        if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            return true;
        }
        SetLastError(settled(GetLastError(), to, true));
        return false;
    });
    if (error != ERROR_SUCCESS) {
        removeFile(temporary, patience);
    }
    return error;
}

DWORD removeFile(const std::wstring& path, Patience& patience)
{
    const std::wstring name = longPath(path);
    return persistently(patience, [&] {
        if (DeleteFileW(name.c_str())) {
            return true;
        }
        SetLastError(settled(GetLastError(), name, true));
        return false;
    });
}

DWORD makeFolder(const std::wstring& path)
{
    const std::wstring name = longPath(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? ERROR_SUCCESS : ERROR_DIRECTORY;
    }
    if (CreateDirectoryW(name.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS) {
        return ERROR_SUCCESS;
    }
    const DWORD error = GetLastError();
    const std::size_t slash = name.find_last_of(L'\\');
    if (error != ERROR_PATH_NOT_FOUND || slash == std::wstring::npos || slash < 4) {
        return error;
    }
    if (const DWORD above = makeFolder(name.substr(0, slash)); above != ERROR_SUCCESS) {
        return above;
    }
    return CreateDirectoryW(name.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS ? ERROR_SUCCESS
                                                                                             : GetLastError();
}

} // namespace lornix
