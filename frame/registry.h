// The library's settings in the registry.
#pragma once

#include "frame/platform.h"

/// Where the product keeps its settings, under HKEY_LOCAL_MACHINE.
inline constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Vantrel LLC\\Vantrel";

/// Room for a value.
using RegistryText = wchar_t[260];

/// Reads a text value into a buffer of the caller's: for threads beside the host's.
/// @return the buffer; null when the value is absent, empty, or longer than 129 characters.
const wchar_t* readRegistryString(HKEY root, const wchar_t* subkey, const wchar_t* valueName,
                                  RegistryText& buffer);

/// Reads a text value.
/// @return the one buffer of this function, overwritten by each call; null when the value is absent, empty,
/// or
///         longer than 129 characters.
const wchar_t* readRegistryString(HKEY root, const wchar_t* subkey, const wchar_t* valueName);
