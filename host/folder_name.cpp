#include "host/folder_name.h"

#include <windows.h>

#include <algorithm>

namespace host {

std::wstring tidyFolder(std::wstring name)
{
    constexpr const wchar_t* kAround = L" \t\r\n\"";
    const size_t first = name.find_first_not_of(kAround);
    if (first == std::wstring::npos) {
        return {};
    }
    name = name.substr(first, name.find_last_not_of(kAround) - first + 1);
    std::replace(name.begin(), name.end(), L'/', L'\\');
    const auto isDriveRoot = [&] {
        return name.size() == 3 && name[1] == L':';
    };
    while (name.size() > 1 && name.back() == L'\\' && !isDriveRoot()) {
        name.pop_back();
    }
    return name;
}

std::wstring folderKey(const std::wstring& name)
{
    std::wstring key = tidyFolder(name);
    CharLowerBuffW(key.data(), static_cast<DWORD>(key.size()));
    return key;
}

bool isFullPath(const std::wstring& tidyName)
{
    const bool drive =
        tidyName.size() >= 3 && iswalpha(tidyName[0]) != 0 && tidyName[1] == L':' && tidyName[2] == L'\\';
    const bool server = tidyName.size() > 2 && tidyName.starts_with(L"\\\\") && tidyName[2] != L'\\';
    return drive || server;
}

std::wstring fullPath(const std::wstring& path)
{
    const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(room, L'\0');
    full.resize(GetFullPathNameW(path.c_str(), room, full.data(), nullptr));
    return full.empty() ? path : full;
}

std::wstring longForm(const std::wstring& path)
{
    const bool isDevice = path.starts_with(L"\\\\?\\") || path.starts_with(L"\\\\.\\");
    if (isDevice || !isFullPath(path)) {
        return path;
    }
    return path.starts_with(L"\\\\") ? L"\\\\?\\UNC" + path.substr(1) : L"\\\\?\\" + path;
}

std::wstring whyNotAFolder(const std::wstring& name)
{
    if (name.empty()) {
        return L"Type the folder's path first, for example C:\\Data, or choose it with Browse.";
    }
    if (!isFullPath(name)) {
        return L"\"" + name +
               L"\" is not a full path. Start it with a drive or a server:\nC:\\Data or \\\\server\\share.";
    }
    const DWORD attributes = GetFileAttributesW(longForm(fullPath(name)).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return L"There is no folder \"" + name + L"\", or it cannot be reached.";
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        return L"\"" + name + L"\" is a file. Quota rules are defined on folders.";
    }
    return {};
}

} // namespace host
