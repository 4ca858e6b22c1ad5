#include "lornix/policies/sealed_text.h"

#include <wincrypt.h>

#include <cwchar>
#include <new>

namespace lornix {
namespace {

/// A block of the data protection functions, wiped when it goes.
class Blob {
public:
    Blob() = default;
    Blob(const Blob&) = delete;
    Blob& operator=(const Blob&) = delete;
    ~Blob()
    {
        if (m_data.pbData != nullptr) {
            SecureZeroMemory(m_data.pbData, m_data.cbData);
            LocalFree(m_data.pbData);
        }
    }
    DATA_BLOB* out() { return &m_data; }
    const BYTE* bytes() const { return m_data.pbData; }
    DWORD size() const { return m_data.cbData; }

private:
    DATA_BLOB m_data{};
};

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
    Blob result;
    if (!CryptProtectData(&plain, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                          result.out()))
    {
        return GetLastError();
    }
    sealed.assign(reinterpret_cast<const char*>(result.bytes()), result.size());
    return ERROR_SUCCESS;
}

DWORD unsealText(const std::string& sealed, OwnedText& text)
{
    DATA_BLOB blob = blobOf(sealed.data(), sealed.size());
    Blob plain;
    if (!CryptUnprotectData(&blob, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN,
                            plain.out()))
    {
        return GetLastError();
    }
    const auto* units = reinterpret_cast<const wchar_t*>(plain.bytes());
    const std::size_t size = plain.size() / sizeof(wchar_t);
    if (size == 0 || units[size - 1] != L'\0') {
        return ERROR_INVALID_DATA;
    }
    text = copyText(units);
    return ERROR_SUCCESS;
}

} // namespace lornix
