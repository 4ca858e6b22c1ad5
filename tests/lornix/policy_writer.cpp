// Stores a long list without end, each time with other texts: to be killed in the middle.
// Usage: policy_writer EVENT, the name of an event that is set after the first round
#include "store/lornix.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace {

void storeNumbered(const std::wstring& prefix)
{
    loadExcludes();
    for (std::uint32_t i = 0; getExcludes(i) != nullptr; ++i) {
        updateExcludes(i, _wcsdup((prefix + std::to_wstring(i)).c_str()));
    }
    storeExcludes();
    applyExcludes();
    storeRulesFromDriver(L"excludes.cnf");
    freeExcludes();
}

} // namespace

int main(int count, char** arguments)
{
    const HANDLE started = count == 2 ? OpenEventA(EVENT_MODIFY_STATE, FALSE, arguments[1]) : nullptr;
    if (started == nullptr) {
        return 2;
    }
    for (;;) {
        storeNumbered(L"second ");
        storeNumbered(L"first ");
        SetEvent(started);
    }
}
