#include "accounts/account_resolution.h"

#include "accounts/account_name.h"
#include "store/lornix.h"

#include <algorithm>
#include <iterator>

const wchar_t* resolveAccount(const void* sid, const wchar_t*& domain, const wchar_t*& name)
{
    static wchar_t fullText[512];
    static wchar_t parts[512];
    domain = nullptr;
    name = nullptr;
    if (getAccountBySidW(sid, fullText, static_cast<int>(std::size(fullText))) == nullptr) {
        return nullptr;
    }
    fullText[std::size(fullText) - 1] = L'\0';
    std::copy(std::begin(fullText), std::end(fullText), parts);
    name = splitAccountName(parts, domain);
    return fullText;
}
