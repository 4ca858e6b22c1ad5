// Message boxes, all of one kind: 8-bit texts, an OK button, no icon.
#pragma once

#include "frame/platform.h"

namespace captions {
inline constexpr char kInformation[] = "Information";
inline constexpr char kWarning[] = "Warning";
inline constexpr char kError[] = "Error";
} // namespace captions

/// @param owner  owner window, may be null; of a child window the platform takes the top-level ancestor.
inline void showMessage(HWND owner, const char* text, const char* caption)
{
    MessageBoxA(owner, text, caption, MB_OK);
}
