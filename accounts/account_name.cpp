#include "accounts/account_name.h"

#include <cwchar>

const wchar_t* splitAccountName(wchar_t* text, const wchar_t*& domain)
{
    wchar_t* const backslash = std::wcschr(text, L'\\');
    if (backslash == nullptr) {
        domain = nullptr;
        return text;
    }
    *backslash = L'\0';
    domain = text;
    return backslash + 1;
}

const wchar_t* afterBackslash(const wchar_t* text)
{
    const wchar_t* const backslash = std::wcschr(text, L'\\');
    return backslash != nullptr ? backslash + 1 : L"";
}

bool directoryDomain(const wchar_t* path, std::wstring_view& domain)
{
    const std::wstring_view whole(path);
    const std::size_t provider = whole.find(L"://");
    if (provider == std::wstring_view::npos) {
        return false;
    }
    const std::wstring_view rest = whole.substr(provider + 3);
    domain = rest.substr(0, rest.find(L'/'));
    return true;
}

bool isDirectoryPath(const wchar_t* host)
{
    return std::wcsstr(host, L"WinNT:") != nullptr || std::wcsstr(host, L"LDAP:") != nullptr;
}
