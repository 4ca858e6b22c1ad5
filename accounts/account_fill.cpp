#include "accounts/account_fill.h"

#include "accounts/enumeration.h"
#include "frame/crash_guard.h"
#include "store/lornix.h"

#include <process.h>

#include <mutex>

namespace {

struct Start {
    std::shared_ptr<AccountFill> fill;
    HMODULE module; ///< this one, counted once more
};

/// Does the thread's work. What it owns is released when it returns.
/// @return the thread's own handle.
HANDLE run(AccountFill& fill)
{
    if (!runGuarded([&] { fillTree(&fill.context); })) {
        runGuarded([] { ODS("fillTree => sigsegv\n"); });
    }
    fill.rows.end();
    const std::lock_guard started(fill.starting);
    return fill.thread;
}

void fillThread(void* argument)
{
    HMODULE module = nullptr;
    HANDLE thread = nullptr;
    {
        const std::unique_ptr<Start> start(static_cast<Start*>(argument));
        module = start->module;
        thread = run(*start->fill);
    }
    // The runtime closes the handle of a thread that returns. This one must not: there may be nothing left to
    // return through once the library is let go.
    CloseHandle(thread);
    FreeLibraryAndExitThread(module, 0);
}

} // namespace

AccountFill::AccountFill(HWND list, UINT notice, const wchar_t* searchBase, const SidList* owners)
    : rows(list, notice)
    , host(searchBase != nullptr ? searchBase : L"")
    , presetOwners(owners)
{
    context.sink = &rows;
    context.presetOwners = presetOwners.get();
    context.host = searchBase != nullptr ? host.c_str() : nullptr;
}

bool startFillThread(const std::shared_ptr<AccountFill>& fill)
{
    auto start = std::make_unique<Start>(Start{fill, nullptr});
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&fillThread),
                            &start->module))
    {
        return false;
    }
    Start* const argument = start.release(); // the thread's
    const std::lock_guard starting(fill->starting);
    const auto thread = _beginthread(fillThread, 0, argument);
    if (thread == static_cast<std::uintptr_t>(-1)) {
        start.reset(argument);
        FreeLibrary(start->module);
        return false;
    }
    fill->thread = reinterpret_cast<HANDLE>(thread);
    return true;
}
