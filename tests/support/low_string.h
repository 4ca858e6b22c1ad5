// Strings whose addresses are promised to lie below 4 GiB.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

/// Whether a string stands in a region of its own, as one does that a heap above 4 GiB had no place for.
inline bool hasRegionOfItsOwn(const wchar_t* string)
{
    MEMORY_BASIC_INFORMATION region{};
    return VirtualQuery(string, &region, sizeof region) != 0 && region.AllocationBase == string;
}

/// Releases such a string the way hosts are told to: a block of the C runtime, or a region.
struct LowStringRelease {
    void operator()(wchar_t* string) const
    {
        if (hasRegionOfItsOwn(string)) {
            VirtualFree(string, 0, MEM_RELEASE);
        } else {
            std::free(string);
        }
    }
};

/// Owns the string that an address stands for; nothing for 0 and -1.
class LowString : public std::unique_ptr<wchar_t, LowStringRelease> {
public:
    explicit LowString(intptr_t address)
        : unique_ptr(address == 0 || address == -1 ? nullptr : reinterpret_cast<wchar_t*>(address))
    {
    }
};
