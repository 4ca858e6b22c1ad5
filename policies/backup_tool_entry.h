// The entry dialog of the backup tools: a program's image name, typed or picked.
#pragma once

#include "frame/platform.h"

/// @param name  name to start with, null for none.
/// @return the name, a malloc block that passes to the caller; null when cancelled.
wchar_t* askBackupTool(HWND owner, const wchar_t* name);
