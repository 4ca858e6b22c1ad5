#include "lornix/sid.h"

#include "lornix/record_list.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <windows.h>

#include <sddl.h>

#include <cstdlib>
#include <cwchar>

namespace lornix {
namespace {

// The platform's functions only read it, and take it as one that may be written.
PSID platformSid(const void* sid)
{
    return const_cast<void*>(sid);
}

} // namespace

bool isSid(const void* sid)
{
    return sid != nullptr && IsValidSid(platformSid(sid));
}

} // namespace lornix

void* sidDup(const void* sid)
{
    if (!lornix::isSid(sid)) {
        return nullptr;
    }
    const DWORD size = GetLengthSid(lornix::platformSid(sid));
    CBlock<void> copy(std::malloc(size));
    return copy && CopySid(size, copy.get(), lornix::platformSid(sid)) ? copy.release() : nullptr;
}

int sidcmp(const void* a, const void* b)
{
    return lornix::isSid(a) && lornix::isSid(b) && EqualSid(lornix::platformSid(a), lornix::platformSid(b))
               ? 0
               : 1;
}

void getTextualSidW(const void* sid, wchar_t* buffer, int capacity)
{
    if (buffer == nullptr || capacity <= 0) {
        return;
    }
    *buffer = L'\0';
    wchar_t* text = nullptr;
    if (!lornix::isSid(sid) || !ConvertSidToStringSidW(lornix::platformSid(sid), &text)) {
        return;
    }
    const Owned<wchar_t*, LocalFree> owner(text);
    // A part of an identifier would name somebody else.
    if (std::wcslen(text) < static_cast<std::size_t>(capacity)) {
        std::wcscpy(buffer, text);
    }
}

SidList* createEmptySidList(void)
{
    return lornix::withRoomFor<SidList>(nullptr, 0);
}

SidList* appendToSidList(SidList* list, void* sid)
{
    return lornix::appended(list, sid);
}

SidList* appendToSidList2(SidList* destination, SidList* source)
{
    if (source == nullptr || source == destination) {
        return destination;
    }
    if (SidList* grown = lornix::withRoomFor(destination, static_cast<std::size_t>(source->count))) {
        destination = grown;
    }
    void* const* sids = source->sids;
    for (std::int32_t i = 0; i < source->count; ++i) {
        destination = appendToSidList(destination, sidDup(sids[i]));
    }
    return destination;
}

void freeSidList(SidList* list)
{
    lornix::releaseList(list);
}
