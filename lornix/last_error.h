// What lornixLastError tells.
#pragma once

#include <new>
#include <string>
#include <string_view>

namespace lornix {

/// Adds a line to what the running call could not do.
void report(const std::wstring& line);

/// The same for a line that lornixTakeErrors has told before, or will: there it stands once.
void reportAgain(const std::wstring& line);

/// A path or a folder in a report.
std::wstring quoted(std::wstring_view name);

/// A platform error in words, with its number.
std::wstring reasonOf(unsigned long error);

namespace last_error_detail {
void clear() noexcept;
void noteOutOfMemory() noexcept;
void noteSurprise(const char* what) noexcept;
} // namespace last_error_detail

/// Runs what an export does: forgets the reports of the call before, and lets no exception out.
/// @return the call's result, or `failed` when it could not be made.
template <class Result, class Call>
Result reporting(Result failed, Call call) noexcept
{
    last_error_detail::clear();
    try {
        return call();
    } catch (const std::bad_alloc&) {
        last_error_detail::noteOutOfMemory();
    } catch (const std::exception& problem) {
        last_error_detail::noteSurprise(problem.what());
    }
    return failed;
}

} // namespace lornix
