#include "lornix/disk/guarded_folder.h"

#include <aclapi.h>
#include <sddl.h>

#include <mutex>
#include <vector>

namespace lornix {
namespace {

// Owned by the administrators; nothing inherited; the system and the administrators do everything, users read.
constexpr const wchar_t* kForEverybody = L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;FRFX;;;BU)";
constexpr const wchar_t* kForAdministrators = L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)";

constexpr DWORD kChanging = FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY | FILE_WRITE_EA | FILE_DELETE_CHILD |
                            FILE_WRITE_ATTRIBUTES | DELETE | WRITE_DAC | WRITE_OWNER | GENERIC_WRITE |
                            GENERIC_ALL;

/// @return nothing when the platform does not tell.
std::vector<char> readUser()
{
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) {
        return {};
    }
    const Owned<HANDLE, CloseHandle> token(opened);
    DWORD size = 0;
    GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
    std::vector<char> user(size);
    if (!GetTokenInformation(token.get(), TokenUser, user.data(), size, &size)) {
        user.clear();
    }
    return user;
}

/// The account that this process runs for, which stays the same; empty while the platform does not tell.
std::vector<char> thisUser()
{
    static std::mutex guard;
    static std::vector<char> user;
    const std::lock_guard lock(guard);
    if (user.empty()) {
        user = readUser();
    }
    return user;
}

/// Whether whoever this is may change what the administration keeps: no user does, save the one who is asking.
bool isTrusted(PSID sid, const std::vector<char>& user)
{
    if (!user.empty() && EqualSid(sid, reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid)) {
        return true;
    }
    // Whoever makes or owns something in the folder is one of them too, as only they can.
    for (const WELL_KNOWN_SID_TYPE known :
         {WinBuiltinAdministratorsSid, WinLocalSystemSid, WinCreatorOwnerSid, WinCreatorOwnerRightsSid})
    {
        if (IsWellKnownSid(sid, known)) {
            return true;
        }
    }
    return false;
}

/// Whether an access list lets nobody else change anything.
bool isClosed(PACL list, const std::vector<char>& user)
{
    if (list == nullptr) {
        return false;
    }
    for (DWORD i = 0; i < list->AceCount; ++i) {
        void* entry = nullptr;
        if (!GetAce(list, i, &entry)) {
            return false;
        }
        const auto* allowed = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
        const BYTE type = allowed->Header.AceType;
        if (type == ACCESS_DENIED_ACE_TYPE) {
            continue;
        }
        if (type != ACCESS_ALLOWED_ACE_TYPE) {
            return false; // no folder of this product has others
        }
        if ((allowed->Mask & kChanging) != 0 && !isTrusted(const_cast<DWORD*>(&allowed->SidStart), user)) {
            return false;
        }
    }
    return true;
}

bool isOurs(HANDLE folder)
{
    PSID owner = nullptr;
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    const DWORD error =
        GetSecurityInfo(folder, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION,
                        &owner, nullptr, &list, nullptr, &read);
    const Owned<PSECURITY_DESCRIPTOR, LocalFree> descriptor(read);
    const std::vector<char> user = thisUser();
    return error == ERROR_SUCCESS && owner != nullptr && isTrusted(owner, user) && isClosed(list, user);
}

} // namespace

Protection::Protection(Readers readers)
{
    PSECURITY_DESCRIPTOR made = nullptr;
    if (ConvertStringSecurityDescriptorToSecurityDescriptorW(
            readers == Readers::kEverybody ? kForEverybody : kForAdministrators, SDDL_REVISION_1, &made,
            nullptr))
    {
        m_descriptor.reset(made);
        m_attributes = {sizeof m_attributes, made, FALSE};
    }
}

DWORD makeGuardedFolder(const std::wstring& path, Readers readers)
{
    Protection protection(readers);
    if (protection.get() == nullptr) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    return CreateDirectoryW(longPath(path).c_str(), protection.get()) ||
                   GetLastError() == ERROR_ALREADY_EXISTS
               ? ERROR_SUCCESS
               : GetLastError();
}

HeldFolder holdFolder(const std::wstring& path)
{
    // Not shared for deleting, which is what moving it would need.
    Handle handle =
        openPlain(path, READ_CONTROL | FILE_READ_ATTRIBUTES | FILE_TRAVERSE,
                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    if (!handle) {
        return {Handle(), GetLastError(), false};
    }
    const bool ours = isOurs(handle.get());
    return {std::move(handle), ERROR_SUCCESS, ours};
}

} // namespace lornix
