#include "lornix/policies/sealed_text.h"

#include <wincrypt.h>

#include <cwchar>
#include <new>

namespace lornix {
namespace {

void wipeAndFreeLocal(BYTE* bytes)
{
    SecureZeroMemory(bytes, LocalSize(bytes));
    LocalFree(bytes);
}
/// What the data protection functions give.
using Blob = Owned<BYTE*, wipeAndFreeLocal>;

DATA_BLOB blobOf(const void* bytes, std::size_t size)
{
    // The functions only read it, although they do not say so.
    return {static_cast<DWORD>(size), static_cast<BYTE*>(const_cast<void*>(bytes))};
}

} // namespace

void wipeAndFree(wchar_t* text)
{
    SecureZeroMemory(text, std::wcslen(text) * sizeof(wchar_t));
    std::free(text);
}

OwnedText copyText(const wchar_t* text)
{
    OwnedText copy(_wcsdup(text));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    return copy;
}

DWORD sealText(const wchar_t* text, std::string& sealed)
{
    // With its terminator, because nothing cannot be protected.
    DATA_BLOB plain = blobOf(text, (std::wcslen(text) + 1) * sizeof(wchar_t));
    DATA_BLOB result{};
    if (!CryptProtectData(&plain, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &result)) {
        return GetLastError();
    }
    const Blob owner(result.pbData);
    sealed.assign(reinterpret_cast<const char*>(result.pbData), result.cbData);
    return ERROR_SUCCESS;
}

DWORD unsealText(const std::string& sealed, OwnedText& text)
{
    DATA_BLOB blob = blobOf(sealed.data(), sealed.size());
    DATA_BLOB plain{};
    if (!CryptUnprotectData(&blob, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &plain)) {
        return GetLastError();
    }
    const Blob owner(plain.pbData);
    const auto* units = reinterpret_cast<const wchar_t*>(plain.pbData);
    const std::size_t size = plain.cbData / sizeof(wchar_t);
    if (size == 0 || units[size - 1] != L'\0') {
        return ERROR_INVALID_DATA;
    }
    text = copyText(units);
    return ERROR_SUCCESS;
}

} // namespace lornix
