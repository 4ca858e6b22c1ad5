#include "tests/support/stack_overflow.h"

#include <windows.h>

namespace {

constexpr ULONG_PTR kPage = 4096;
volatile bool enough = false;
volatile int usedUp = 0;

int useUp(const volatile char* above)
{
    volatile char page[kPage];
    page[0] = static_cast<char>(above[0] + 1);
    return enough ? 0 : useUp(page) + page[0];
}

/// Where a whole stack is there from the start, the page that tells of the overflow is put where it would come to
/// stand in a stack that grows. Elsewhere it stands there.
void leaveWhatIsGuaranteed()
{
    ULONG guaranteed = 0;
    SetThreadStackGuarantee(&guaranteed);
    MEMORY_BASIC_INFORMATION stack{};
    VirtualQuery(&guaranteed, &stack, sizeof stack);
    if (guaranteed > kPage) {
        char* const last = static_cast<char*>(stack.AllocationBase) + guaranteed;
        DWORD before = 0;
        VirtualProtect(last, kPage, PAGE_READWRITE | PAGE_GUARD,
                       &before); // of no effect on what is not yet there
    }
}

} // namespace

void overflowStack()
{
    leaveWhatIsGuaranteed();
    usedUp = useUp("");
}

void guaranteeStackForHandlers()
{
    ULONG wanted = 128 * 1024;
    SetThreadStackGuarantee(&wanted);
}
