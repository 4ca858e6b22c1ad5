// What the tests of notifications have in common.
#pragma once

inline constexpr char kNotificationEntry[] =
    "Notification script and options...";          // the caption of their entry dialog
inline constexpr const wchar_t* kNotSet = nullptr; // an attribute
