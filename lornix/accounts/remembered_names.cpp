#include "lornix/accounts/remembered_names.h"

#include "lornix/accounts/source.h"
#include "lornix/sid.h"

#include <windows.h>

#include <mutex>
#include <unordered_map>

namespace lornix {
namespace {

constexpr std::size_t kMostNames = 4096;
constexpr ULONGLONG kLifetime = 60000; // milliseconds

struct Entry {
    std::wstring name;
    ULONGLONG since;
};

std::mutex guard;
std::unordered_map<std::string, Entry> names;

std::wstring remembered(AccountSource& source, const void* sid)
{
    const auto bytes = sidBytes(sid);
    const std::string key(bytes.begin(), bytes.end());
    const ULONGLONG now = GetTickCount64();
    {
        const std::lock_guard lock(guard);
        const auto found = names.find(key);
        if (found != names.end() && now - found->second.since < kLifetime) {
            return found->second.name;
        }
    }
    std::wstring name = source.nameOf(sid); // unlocked: it may take long
    const std::lock_guard lock(guard);
    if (names.size() >= kMostNames) {
        names.clear();
    }
    names.insert_or_assign(key, Entry{name, now});
    return name;
}

} // namespace

std::wstring accountName(const void* sid)
{
    if (!isSid(sid)) {
        return {};
    }
    for (AccountSource* source : accountSources()) {
        const bool isPlatform = source == &platformAccounts();
        if (std::wstring name = isPlatform ? remembered(*source, sid) : source->nameOf(sid); !name.empty()) {
            return name;
        }
    }
    return {};
}

} // namespace lornix
