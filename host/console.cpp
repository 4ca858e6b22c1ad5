#include "host/console.h"

#include <windows.h>

namespace host {

void printText(const std::wstring& text, bool error)
{
    const DWORD which = error ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE;
    if (GetStdHandle(which) == nullptr) {
        AttachConsole(ATTACH_PARENT_PROCESS);
    }
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), nullptr, 0,
                                          nullptr, nullptr);
    std::string utf8(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), utf8.data(), bytes, nullptr,
                        nullptr);
    for (size_t at = 0; at < utf8.size();) {
        DWORD written = 0;
        if (!WriteFile(GetStdHandle(which), utf8.data() + at, static_cast<DWORD>(utf8.size() - at), &written,
                       nullptr) ||
            written == 0)
        {
            return;
        }
        at += written;
    }
}

} // namespace host
