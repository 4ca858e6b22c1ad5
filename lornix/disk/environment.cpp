#include "lornix/disk/environment.h"

#include <windows.h>

namespace lornix {

std::wstring environmentValue(const wchar_t* name)
{
    std::wstring value(MAX_PATH, L'\0');
    for (;;) {
        const auto room = static_cast<DWORD>(value.size());
        const DWORD length = GetEnvironmentVariableW(name, value.data(), room);
        value.resize(length);
        if (length < room)
        { // otherwise it is the room needed, and another thread may make the value longer still
            return value;
        }
    }
}

} // namespace lornix
