// The version that the platform tells this program.
#pragma once

#include "frame/platform.h"

/// Asked for anew each time, and here alone. A program whose manifest does not name a newer system is told 6.2 on all
/// of them.
/// @return all zero when the platform does not tell.
OSVERSIONINFOEXW systemVersion();
