#include "host/status_line.h"

#include <commctrl.h>

#include <iterator>

namespace host {
namespace {

// The parts, from left to right.
constexpr int kRules = 0;
constexpr int kModified = 1;
constexpr int kError = 2;
constexpr int kDataFolder = 3;
constexpr int kParts = 4;

std::wstring counted(size_t number, const wchar_t* one, const wchar_t* many)
{
    return std::to_wstring(number) + L" " + (number == 1 ? one : many);
}

} // namespace

void StatusLine::resize()
{
    RECT area{};
    GetClientRect(bar_, &area);
    constexpr int kHundredths[kParts - 1] = {20, 38, 62};
    int edges[kParts]{};
    for (int part = 0; part < kParts - 1; ++part) {
        edges[part] = MulDiv(area.right, kHundredths[part], 100);
    }
    edges[kDataFolder] = -1;
    SendMessageW(bar_, SB_SETPARTS, kParts, reinterpret_cast<LPARAM>(edges));
}

void StatusLine::show(int part, const std::wstring& text)
{
    SendMessageW(bar_, SB_SETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(text.c_str()));
}

void StatusLine::showRules(int rules, size_t folders)
{
    show(kRules, counted(static_cast<size_t>(rules), L"rule", L"rules") + L" in " +
                     counted(folders, L"folder", L"folders"));
}

void StatusLine::showModified(bool modified)
{
    show(kModified, modified ? L"Unsaved changes" : L"All changes stored");
}

void StatusLine::showError(const std::wstring& error)
{
    // One line is all there is room for; the message box had the whole text.
    show(kError,
         error.empty() ? L"No store error" : L"Store: " + error.substr(0, error.find_first_of(L"\r\n")));
}

void StatusLine::showDataFolder(const std::wstring& folder)
{
    show(kDataFolder, L"Data: " + folder);
}

} // namespace host
