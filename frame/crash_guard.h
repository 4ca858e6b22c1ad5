// The crash guard: runs a piece of work, and survives what it throws and the faults it raises.
#pragma once

#include "frame/platform.h"

#include <type_traits>
#include <utility>

/// Where a guard stands, as its line in the debug channel names it.
struct CrashSite {
    const char* source;
    const char* routine;
    int line; ///< fixed: support staff look lines up by this number, so it does not follow the code
};

/// All guarded dialog procedures.
namespace crash_sites {
inline constexpr CrashSite kQuotaSettings{"qleDlg", "MyDlgProc", 265};
inline constexpr CrashSite kNotificationEntry{"nleDlg", "MyDlgProc", 193};
inline constexpr CrashSite kNotifications{"notflDlg", "MyDlgProc", 245};
inline constexpr CrashSite kAbout{"about", "MyAboutDlgProc", 70};
inline constexpr CrashSite kExcludeEntry{"eleDlg", "MyDlgProc", 56};
inline constexpr CrashSite kExcludes{"exclDlg", "MyDlgProc", 178};
inline constexpr CrashSite kBlockedExtensionEntry{"eleextDlg", "MyDlgProc", 80};
inline constexpr CrashSite kBlockedExtensions{"exclextDlg", "MyDlgProc", 191};
inline constexpr CrashSite kAdministrativeAccounts{"mgrDlg", "MyDlgProc", 177};
inline constexpr CrashSite kBackupToolEntry{"elpDlg", "MyDlgProc", 74};
inline constexpr CrashSite kBackupTools{"excpDlg", "MyDlgProc", 178};
inline constexpr CrashSite kProcessChooser{"lprocDlg", "MyDlgProc", 110};
inline constexpr CrashSite kProcessChooserRow{"lprocDlg", "myCallBack", 49};
} // namespace crash_sites

namespace crash_guard_detail {
bool run(void (*call)(void*), void* context);
void report(const CrashSite& site);
} // namespace crash_guard_detail

/// Runs `work` and swallows whatever it raises: language exceptions of any module, processor faults, software
/// exceptions. Nothing is rolled back, and a processor fault skips the destructors of the work's own frames:
/// hold what must be released outside of it.
/// @return whether the work came to its end.
template <class Work>
bool runGuarded(Work&& work)
{
    return crash_guard_detail::run(
        [](void* context) { (*static_cast<std::remove_reference_t<Work>*>(context))(); }, &work);
}

/// Raised in place of what interrupted a piece of work.
struct Interrupted {};

/// Runs work inside of other guarded work. What it raises goes on as a language exception: the destructors on the way
/// to the outer guard run, which a processor fault would skip.
template <class Work>
void unwinding(Work&& work)
{
    if (!runGuarded(work)) {
        throw Interrupted{};
    }
}

/// Runs the body of a dialog procedure. When it raises anything, one line with the site goes to the debug
/// channel and the message counts as not handled, so that the dialog stays open.
/// @param body  callable giving the procedure's INT_PTR result.
template <class Body>
INT_PTR guardProcedure(const CrashSite& site, Body&& body)
{
    INT_PTR result = FALSE;
    if (!runGuarded([&] { result = body(); })) {
        crash_guard_detail::report(site);
        return FALSE;
    }
    return result;
}
