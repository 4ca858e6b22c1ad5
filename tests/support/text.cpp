#include "tests/support/text.h"

#include <windows.h>

std::string utf8(std::wstring_view text)
{
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    const int room = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(room), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), room, nullptr, nullptr);
    return bytes;
}

std::wstring wide(std::string_view text)
{
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    const int room = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring units(static_cast<size_t>(room), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, units.data(), room);
    return units;
}
