// The library's settings in the registry.
#pragma once

#include "frame/platform.h"

/// Where the product keeps its settings, under HKEY_LOCAL_MACHINE.
inline constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Vantrel LLC\\Vantrel";

/// Reads a text value.
/// @return the one buffer of this function, overwritten by each call; null when the value is absent, empty,
/// or
///         longer than 129 characters.
const wchar_t* readRegistryString(HKEY root, const wchar_t* subkey, const wchar_t* valueName);
