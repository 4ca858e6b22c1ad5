#include "lornix/disk/guarded_folder.h"

#include "lornix/disk/file.h"

#include <aclapi.h>
#include <sddl.h>

#include <memory>
#include <vector>

namespace lornix {
namespace {

// Owned by the administrators; nothing inherited; the system and the administrators do everything, users read.
constexpr const wchar_t* kGuarded = L"O:BAD:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;FRFX;;;BU)";

using Descriptor = std::unique_ptr<void, decltype(&LocalFree)>;

bool isThisUser(PSID owner)
{
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) {
        return false;
    }
    const Handle token(opened);
    DWORD size = 0;
    GetTokenInformation(token.get(), TokenUser, nullptr, 0, &size);
    std::vector<char> user(size);
    return GetTokenInformation(token.get(), TokenUser, user.data(), size, &size) &&
           EqualSid(owner, reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid);
}

} // namespace

DWORD makeGuardedFolder(const std::wstring& path)
{
    const std::wstring name = longPath(path);
    if (GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES) {
        return ERROR_SUCCESS;
    }
    PSECURITY_DESCRIPTOR made = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kGuarded, SDDL_REVISION_1, &made, nullptr)) {
        return GetLastError();
    }
    const Descriptor descriptor(made, LocalFree);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, descriptor.get(), FALSE};
    return CreateDirectoryW(name.c_str(), &attributes) || GetLastError() == ERROR_ALREADY_EXISTS
               ? ERROR_SUCCESS
               : GetLastError();
}

bool isOurs(const std::wstring& path)
{
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    const DWORD error =
        GetNamedSecurityInfoW(const_cast<wchar_t*>(path.c_str()), SE_FILE_OBJECT, // only reads it
                              OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr, &read);
    const Descriptor descriptor(read, LocalFree);
    if (error != ERROR_SUCCESS) {
        return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    }
    return owner != nullptr && (IsWellKnownSid(owner, WinBuiltinAdministratorsSid) ||
                                IsWellKnownSid(owner, WinLocalSystemSid) || isThisUser(owner));
}

} // namespace lornix
