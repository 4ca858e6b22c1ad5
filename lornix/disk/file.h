// Files, whole and safe. Links at their names are not followed.
#pragma once

#include "store/owned.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace lornix {

/// An open file or folder.
using Handle = Owned<HANDLE, CloseHandle, -1>;

/// How long is gone on trying when a virus scanner, a backup or another process has a file open. What calls that
/// follow each other wait counts together: a host that asks for thirty folders whose file is held does not wait
/// thirty times.
class Patience {
public:
    enum class For : std::uint8_t {
        kChange,
        kReading, ///< somebody who only wants to look does not wait as long
        kTurn     ///< to be the one who changes
    };
    explicit Patience(For what = For::kChange)
        : m_for(what)
    {
    }
    static Patience toRead() { return Patience(For::kReading); }

    /// Waits a moment when the error may pass.
    /// @return false when it is one that stays, or when the time is over.
    bool waitFor(DWORD error);

    /// What was waited since the last time is not counted: it helped.
    void giveBack();

    /// All of it is there again.
    static void restore();

private:
    For m_for;
    DWORD m_waited = 0; ///< since something worked
};

/// A full path in the form that knows no limit of 260 characters.
/// @param path  forward slashes are allowed.
std::wstring longPath(const std::wstring& path);

/// A file above is none of ours: 100,000 rules need an eighth of it.
inline constexpr LONGLONG kLargestFile = 64 << 20;

/// A number, or a time, that the platform gives in two halves.
constexpr std::uint64_t joined(DWORD high, DWORD low)
{
    return static_cast<std::uint64_t>(high) << 32 | low;
}
constexpr std::uint64_t joined(const FILETIME& time)
{
    return joined(time.dwHighDateTime, time.dwLowDateTime);
}

/// What tells that a file is still the one that was read. What the store writes with the time and the size of another has
/// another checksum, which stands at the end.
struct FileStamp {
    std::uint64_t size = 0;
    std::uint64_t changed = 0;
    std::string tail; ///< its last bytes
    bool operator==(const FileStamp&) const = default;
};

/// @param stamp  receives what was read, when it is not null.
/// @return 0 or a platform error. ERROR_FILE_NOT_FOUND also when the folder of the file is missing.
DWORD readFile(const std::wstring& path, std::string& bytes, Patience& patience, FileStamp* stamp = nullptr);

/// @return as for readFile.
DWORD readStamp(const std::wstring& path, FileStamp& stamp, Patience& patience);

/// Whether a file can be read and is a text, byte for byte.
/// @param stamp  receives what was compared.
bool holdsText(const std::wstring& path, std::string_view text, Patience& patience, FileStamp& stamp);

/// Makes a new file and sees to it that it is on the disk. On failure nothing of it is left.
/// @param security  null for what the folder gives to its files.
/// @param stamp     receives what was written, when it is not null. No later change leaves the file with that stamp.
DWORD writeFile(const std::wstring& path, std::string_view bytes, SECURITY_ATTRIBUTES* security,
                FileStamp* stamp = nullptr);

/// Puts a text in the place of a file in one step: whoever reads sees the one or the other.
/// @param temporary  name in the same folder; what stands there goes.
DWORD replaceFile(const std::wstring& path, const std::wstring& temporary, std::string_view bytes,
                  SECURITY_ATTRIBUTES* security, Patience& patience, FileStamp* stamp = nullptr);

DWORD removeFile(const std::wstring& path, Patience& patience);

/// Opens what stands under a name, and not what a link there leads to.
/// @return invalid, with the platform's last error, when it cannot be opened or is a link.
Handle openPlain(const std::wstring& path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                 DWORD disposition, DWORD flags);

/// Makes a folder, and those above it that are missing.
DWORD makeFolder(const std::wstring& path);

} // namespace lornix
