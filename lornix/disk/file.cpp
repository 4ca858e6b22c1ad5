#include "lornix/disk/file.h"

#include <algorithm>

namespace lornix {
namespace {

constexpr DWORD kStep = 10; // milliseconds

// A hundred times what 100,000 rules need. A file above is none of ours.
constexpr LONGLONG kLargestFile = 1 << 30;

/// Repeats a platform call until it works or the error is one that stays.
template <class Call>
DWORD persistently(Patience& patience, Call call)
{
    while (true) {
        if (call()) {
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

DWORD move(const std::wstring& source, const std::wstring& target, DWORD flags, Patience& patience)
{
    const std::wstring from = longPath(source);
    const std::wstring to = longPath(target);
    return persistently(patience, [&] {
        if (MoveFileExW(from.c_str(), to.c_str(), flags | MOVEFILE_WRITE_THROUGH)) {
            return true;
        }
        SetLastError(settled(GetLastError(), to, true));
        return false;
    });
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

} // namespace

bool Patience::waitFor(DWORD error)
{
    // Denied also means: to be deleted as soon as somebody else closes it, or open where it is to be replaced.
    if (error != ERROR_SHARING_VIOLATION && error != ERROR_LOCK_VIOLATION && error != ERROR_ACCESS_DENIED) {
        return false;
    }
    if (waited_ >= longest_) {
        SetLastError(error);
        return false;
    }
    Sleep(kStep);
    waited_ += kStep;
    return true;
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

DWORD readFile(const std::wstring& path, std::string& bytes, Patience& patience)
{
    const std::wstring name = longPath(path);
    HANDLE opened = INVALID_HANDLE_VALUE;
    const DWORD error = persistently(patience, [&] {
        opened =
            CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                        nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        if (opened != INVALID_HANDLE_VALUE) {
            return true;
        }
        SetLastError(settled(GetLastError(), name, false));
        return false;
    });
    const Handle file(opened);
    if (error != ERROR_SUCCESS) {
        return error == ERROR_PATH_NOT_FOUND ? ERROR_FILE_NOT_FOUND : error;
    }
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size)) {
        return GetLastError();
    }
    if (size.QuadPart > kLargestFile) {
        return ERROR_FILE_TOO_LARGE;
    }
    bytes.resize(static_cast<std::size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) {
        return GetLastError();
    }
    bytes.resize(read);
    return ERROR_SUCCESS;
}

DWORD writeFile(const std::wstring& path, std::string_view bytes, DWORD disposition)
{
    const std::wstring name = longPath(path);
    DWORD error = ERROR_SUCCESS;
    {
        const Handle file(CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file.isOpen()) {
            return GetLastError();
        }
        error = writeAll(file.get(), bytes);
    }
    if (error != ERROR_SUCCESS) {
        DeleteFileW(name.c_str());
    }
    return error;
}

DWORD replaceFile(const std::wstring& source, const std::wstring& target, Patience& patience)
{
    return move(source, target, MOVEFILE_REPLACE_EXISTING, patience);
}

DWORD renameFile(const std::wstring& source, const std::wstring& target, Patience& patience)
{
    return move(source, target, 0, patience);
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
