// The debug channel: the debugger, and where the environment variable LORNIX_LOG says.
#include "lornix/debug/wide_format.h"
#include "lornix/disk/environment.h"
#include "lornix/disk/file.h"
#include "lornix/faults.h"
#include "lornix/sid.h"
#include "lornix/text/escaped_text.h"
#include "lornix/text/sid_text.h"
#include "lornix/text/wide_text.h"
#include "store/lornix.h"

#include <windows.h>

#include <algorithm>
#include <cstdarg>
#include <cwchar>
#include <mutex>

namespace lornix {
namespace {

constexpr const wchar_t* kVariable = L"LORNIX_LOG";
constexpr std::size_t kBlock = 4000; // what a monitor of debug output takes at once, less its header

std::mutex guard; // lines of several threads do not mix

void endTurn(HANDLE mutex)
{
    ReleaseMutex(mutex); // which is refused to who has waited in vain
    CloseHandle(mutex);
}

/// Keeps other processes from writing to a log at the same moment: not every system appends in one step, so that one
/// line would take the place of another. A process that was killed or stopped meanwhile does not hold the others up.
Owned<HANDLE, endTurn> takeTurn()
{
    constexpr DWORD kLongest = 1000; // milliseconds
    Owned<HANDLE, endTurn> turn(CreateMutexW(nullptr, FALSE, L"Local\\lornix log"));
    WaitForSingleObject(turn.get(), kLongest);
    return turn;
}

/// The log as it is asked for now. It stays open for one call only: it may be moved away or deleted at any time.
class Log {
public:
    Log()
    {
        const std::wstring name = environmentValue(kVariable);
        if (name == L"-") {
            m_handle = GetStdHandle(STD_ERROR_HANDLE);
        } else if (!name.empty()) {
            m_file.reset(CreateFileW(longPath(name).c_str(), FILE_APPEND_DATA | SYNCHRONIZE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                     OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
            m_handle = m_file.get();
        }
    }

    void close() { m_file.reset(); }

    bool isOpen() const { return m_handle != nullptr && m_handle != INVALID_HANDLE_VALUE; }

    void write(std::wstring_view text)
    {
        if (!isOpen()) {
            return;
        }
        std::string bytes;
        appendUtf8(bytes, fromWide(text));
        const auto turn = takeTurn();
        DWORD written = 0;
        WriteFile(m_handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    }

private:
    Handle m_file; // a log that is ours to close
    HANDLE m_handle = nullptr;
};

std::wstring widened(const std::string& text)
{
    const auto length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

/// Formats as the runtime does. Wide strings and characters come through whole, whatever the 8-bit code page is: the
/// narrow formatter would give up on the whole line. What is longer than a million characters is cut.
std::wstring formatLine(const char* format, va_list arguments)
{
    constexpr std::size_t kLongest = 1 << 20;
    const std::wstring wide = widened(wideFormat(format));
    for (std::size_t room = 1 << 9;; room *= 4) {
        std::wstring line(std::min(room, kLongest), L'\0');
        va_list again{};
        va_copy(again, arguments);
        const int length = _vsnwprintf(line.data(), line.size(), wide.c_str(), again);
        va_end(again);
        if (length >= 0 || room >= kLongest) {
            // Below 0: there is no room, or something cannot be shown; what came before it can.
            line.resize(length >= 0 ? static_cast<std::size_t>(length) : wcsnlen(line.data(), line.size()));
            return line;
        }
    }
}

void toDebugger(std::wstring_view text)
{
    const auto length = static_cast<int>(text.size());
    const int room = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(room), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), length, bytes.data(), room, nullptr, nullptr);
    OutputDebugStringA(bytes.c_str());
}

bool isMonitored()
{
    // A debugger, or a program that shows the debug output of all: it makes this event.
    return IsDebuggerPresent() ||
           Owned<HANDLE, CloseHandle>(OpenEventW(SYNCHRONIZE, FALSE, L"DBWIN_BUFFER_READY"));
}

std::wstring describe(const QuotaRule& rule)
{
    std::string account;
    if (rule.sid != nullptr && !isSid(rule.sid)) {
        account = "invalid";
    } else {
        appendAccount(account, sidBytes(rule.sid));
    }
    wchar_t numbers[200];
    _snwprintf(
        numbers, std::size(numbers),
        L"rule %p: type %lu, in use %I64d, hard limit %I64d, soft limit %I64d, next %p, prev %p, account ",
        static_cast<const void*>(&rule), static_cast<unsigned long>(rule.type), rule.inUse, rule.hardLimit,
        rule.softLimit, static_cast<const void*>(rule.next), static_cast<const void*>(rule.prev));
    return numbers + std::wstring(account.begin(), account.end()) + L", path " +
           (rule.path == nullptr ? L"(null)" : rule.path) + L"\n";
}

void say(std::wstring_view text, Log& log)
{
    const std::lock_guard lock(guard);
    toDebugger(text);
    log.write(text);
}

void dump(const QuotaRule* rule)
{
    Log log;
    if (!log.isOpen() && !isMonitored()) {
        return; // nobody reads along, and a chain may have a hundred thousand rules
    }
    const auto sayAll = [&] {
        std::wstring block; // put together without the lock: a damaged chain may fault here
        for (; rule != nullptr; rule = rule->next) {
            const std::wstring line = describe(*rule);
            if (!block.empty() && block.size() + line.size() > kBlock) {
                say(block, log);
                block.clear();
            }
            block += line;
        }
        if (!block.empty()) {
            say(block, log);
        }
    };
    runThen(sayAll, [&] { log.close(); });
}

} // namespace
} // namespace lornix

void debug(const QuotaRule* rule)
{
    try {
        lornix::dump(rule);
    } catch (const std::exception&) {
        OutputDebugStringA("lornix: a chain of rules could not be shown\n");
    }
}

void ODS(const char* format, ...)
{
    if (format == nullptr) {
        return;
    }
    va_list arguments{};
    va_start(arguments, format);
    try {
        const std::wstring line = lornix::formatLine(format, arguments);
        lornix::Log log;
        lornix::say(line, log);
    } catch (const std::exception&) {
        OutputDebugStringA("lornix: a debug line could not be shown\n");
    }
    va_end(arguments);
}
