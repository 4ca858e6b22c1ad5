#include "frame/system_version.h"

OSVERSIONINFOEXW systemVersion()
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof version;
    return GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version)) ? version : OSVERSIONINFOEXW{};
}
