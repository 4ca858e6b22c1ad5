// The platform's headers, included one way everywhere.
#pragma once

#include <windows.h>

#include <commctrl.h>
