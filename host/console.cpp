#include "host/console.h"

#include <windows.h>

#include <algorithm>

namespace host {

namespace {

/// A console shows characters, and takes bytes for those of its own code page.
void writeCharacters(HANDLE console, const std::wstring& text)
{
    constexpr size_t kMostAtOnce = 8192; // older consoles refuse more than 64 KB
    for (size_t at = 0; at < text.size();) {
        const auto count = static_cast<DWORD>(std::min(text.size() - at, kMostAtOnce));
        DWORD written = 0;
        if (!WriteConsoleW(console, text.data() + at, count, &written, nullptr) || written == 0) {
            return;
        }
        at += written;
    }
}

void writeBytes(HANDLE file, const std::wstring& text)
{
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), nullptr, 0,
                                          nullptr, nullptr);
    std::string utf8(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), utf8.data(), bytes, nullptr,
                        nullptr);
    for (size_t at = 0; at < utf8.size();) {
        DWORD written = 0;
        if (!WriteFile(file, utf8.data() + at, static_cast<DWORD>(utf8.size() - at), &written, nullptr) ||
            written == 0)
        {
            return;
        }
        at += written;
    }
}

} // namespace

void printText(const std::wstring& text, bool error)
{
    const DWORD which = error ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE;
    if (GetStdHandle(which) == nullptr) {
        AttachConsole(ATTACH_PARENT_PROCESS);
    }
    const HANDLE output = GetStdHandle(which);
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode)) {
        writeCharacters(output, text);
    } else {
        writeBytes(output, text);
    }
}

} // namespace host
