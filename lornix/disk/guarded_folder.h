// Folders and files that only the administration can change.
#pragma once

#include "lornix/disk/file.h"

#include <optional>

namespace lornix {

/// Who may read what is made. Only the system and the administrators may change it.
enum class Readers : std::uint8_t { kEverybody, kAdministrators };

/// Security for something to be made: it belongs to the administrators, and nothing is taken over from above.
class Protection {
public:
    explicit Protection(Readers readers);

    /// Null when the platform could not make one.
    SECURITY_ATTRIBUTES* get()
    {
        return m_attributes.lpSecurityDescriptor == nullptr ? nullptr : &m_attributes;
    }

private:
    Owned<PSECURITY_DESCRIPTOR, LocalFree> m_descriptor;
    SECURITY_ATTRIBUTES m_attributes{};
};

/// Makes one folder, unless it is there.
/// @return 0 or a platform error; ERROR_INVALID_OWNER for a user who is no administrator.
DWORD makeGuardedFolder(const std::wstring& path, Readers readers);

/// A folder that is held: as long as the object lives nobody can move it and put another in its place.
struct HeldFolder {
    Handle handle;
    DWORD error = ERROR_SUCCESS; ///< that kept it from being opened
    bool isOurs = false;         ///< it is no link, and administrators alone may change what is in it
};

HeldFolder holdFolder(const std::wstring& path);

} // namespace lornix
