// Files, whole and safe.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace lornix {

/// A handle that closes itself.
class Handle {
public:
    explicit Handle(HANDLE handle = INVALID_HANDLE_VALUE)
        : handle_(handle)
    {
    }
    Handle(Handle&& other) noexcept
        : handle_(other.handle_)
    {
        other.handle_ = INVALID_HANDLE_VALUE;
    }
    Handle& operator=(Handle&&) = delete;
    ~Handle()
    {
        if (isOpen()) {
            CloseHandle(handle_);
        }
    }

    bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

/// How long a call goes on trying when a virus scanner, a backup or another process has a file open. One for a
/// whole call, so that a thousand files that stay locked do not cost a thousand times the wait.
class Patience {
public:
    /// @param longest  milliseconds in all. Somebody who only wants to look does not wait as long.
    explicit Patience(DWORD longest = 3000)
        : longest_(longest)
    {
    }

    static Patience toRead() { return Patience(300); }

    /// Waits a moment when the error may pass.
    /// @return false when it is one that stays, or when the time is over.
    bool waitFor(DWORD error);

private:
    DWORD longest_;
    DWORD waited_ = 0;
};

/// A full path in the form that knows no limit of 260 characters.
/// @param path  forward slashes are allowed.
std::wstring longPath(const std::wstring& path);

/// @return 0 or a platform error. ERROR_FILE_NOT_FOUND also when the folder of the file is missing.
DWORD readFile(const std::wstring& path, std::string& bytes, Patience& patience);

/// Writes a file and makes sure that it is on the disk. On failure nothing of it is left.
/// @param disposition  CREATE_NEW or CREATE_ALWAYS.
DWORD writeFile(const std::wstring& path, std::string_view bytes, DWORD disposition);

/// Puts a file in the place of another, of the same folder, in one step: whoever reads sees the one or the other.
DWORD replaceFile(const std::wstring& source, const std::wstring& target, Patience& patience);

/// Gives a file a new name that must be free.
DWORD renameFile(const std::wstring& source, const std::wstring& target, Patience& patience);

DWORD removeFile(const std::wstring& path, Patience& patience);

/// Makes a folder, and those above it that are missing.
DWORD makeFolder(const std::wstring& path);

} // namespace lornix
