// The entry dialog of the exception files: a file or path, typed or picked.
#pragma once

#include "frame/platform.h"

/// @param path  path to start with, null for none.
/// @return the path, a malloc block that passes to the caller; null when cancelled.
wchar_t* askExclude(HWND owner, const wchar_t* path);
