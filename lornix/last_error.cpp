#include "lornix/last_error.h"

#include "lornix_host.h"
#include "store/owned.h"

#include <windows.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace lornix {
namespace {

// One user: the host's user-interface thread.
std::wstring lines;
const wchar_t* fallback = nullptr; // where even a line is too much

constexpr std::size_t kMostUntold = 100;
std::vector<std::wstring> untold; // each line once, whatever call it came from
bool untoldMore = false;          // than there is room for, or memory
std::wstring taken;

void appendLine(std::wstring& text, std::wstring_view line)
{
    text += text.empty() ? L"" : L"\n";
    text += line;
}

} // namespace

namespace last_error_detail {

void clear() noexcept
{
    lines.clear();
    fallback = nullptr;
}

void noteOutOfMemory() noexcept
{
    fallback = L"There is not enough memory.";
    untoldMore = true;
}

void noteSurprise(const char* what) noexcept
{
    try {
        const std::string text = what;
        report(L"The call ended with an unexpected exception: " + std::wstring(text.begin(), text.end()));
    } catch (const std::bad_alloc&) {
        noteOutOfMemory();
    }
}

} // namespace last_error_detail

void reportAgain(const std::wstring& line)
{
    appendLine(lines, line);
}

void report(const std::wstring& line)
{
    reportAgain(line);
    if (std::find(untold.begin(), untold.end(), line) != untold.end()) {
        return;
    }
    if (untold.size() < kMostUntold) {
        untold.push_back(line);
    } else {
        untoldMore = true;
    }
}

std::wstring quoted(std::wstring_view name)
{
    return L'"' + std::wstring(name) + L'"';
}

std::wstring reasonOf(unsigned long error)
{
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                            FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                        nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const Owned<wchar_t*, LocalFree> owner(text);
    std::wstring reason(text == nullptr ? L"" : text, length);
    while (!reason.empty() && (reason.back() == L' ' || reason.back() == L'.')) {
        reason.pop_back();
    }
    return (reason.empty() ? L"platform" : reason) + L" (error " + std::to_wstring(error) + L").";
}

} // namespace lornix

const wchar_t* lornixLastError(void)
{
    return lornix::fallback != nullptr ? lornix::fallback : lornix::lines.c_str();
}

const wchar_t* lornixTakeErrors(void)
{
    using namespace lornix;
    constexpr const wchar_t* kMore =
        L"More could not be done, for want of memory or for more reasons than fit here.";
    const std::vector<std::wstring> told = std::exchange(untold, {});
    const bool hasMore = std::exchange(untoldMore, false);
    try {
        taken.clear();
        for (const std::wstring& line : told) {
            appendLine(taken, line);
        }
        if (hasMore) {
            appendLine(taken, kMore);
        }
    } catch (const std::bad_alloc&) {
        return kMore;
    }
    return taken.c_str();
}
