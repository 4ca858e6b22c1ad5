#include "accounts/server_share.h"

#include <algorithm>
#include <string_view>

bool makeIpcShareName(const wchar_t* server, wchar_t (&share)[kIpcShareCapacity])
{
    const std::wstring_view name(server != nullptr ? server : L"");
    if (name.empty()) {
        return false;
    }
    const bool prefixed = name.substr(0, 2).find(L'\\') != std::wstring_view::npos;
    if (static_cast<int>(name.size()) - (prefixed ? 2 : 0) > kServerNameLimit) {
        return false;
    }
    wchar_t* end = share;
    for (const std::wstring_view part :
         {std::wstring_view(prefixed ? L"" : L"\\\\"), name, std::wstring_view(L"\\IPC$")})
    {
        end = std::copy(part.begin(), part.end(), end);
    }
    *end = L'\0';
    return true;
}
