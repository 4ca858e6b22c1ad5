#include "frame/registry.h"

#include "store/owned.h"

const wchar_t* readRegistryString(HKEY root, const wchar_t* subkey, const wchar_t* valueName,
                                  RegistryText& buffer)
{
    buffer[0] = L'\0';
    DWORD type = REG_SZ;
    // QUIRK: bytes, not characters. Only half of the buffer is offered, and a longer value reads as absent, so that no
    // file name is built from a "Path" that is too long for one. RegistryTest.TakesALongerValueAsAbsent
    DWORD size = 260;
    Owned<HKEY, RegCloseKey> key;
    RegCreateKeyW(root, subkey, key.put()); // a failure leaves a null key, and the query below fails
    const LSTATUS status =
        RegQueryValueExW(key.get(), valueName, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
    if (status != ERROR_SUCCESS || buffer[0] == L'\0') {
        return nullptr;
    }
    return buffer;
}

const wchar_t* readRegistryString(HKEY root, const wchar_t* subkey, const wchar_t* valueName)
{
    static RegistryText buffer;
    return readRegistryString(root, subkey, valueName, buffer);
}
