// A directory of a few accounts, in place of the platform's, for libraries that come and go.
#pragma once

#include <windows.h>

#include <functional>

/// Lets a library that was just loaded ask this directory, for as long as it stays.
/// @param pause  called on the thread that asks, at each step that may take its time.
void serveDirectory(HMODULE library, void (*pause)());

/// What the directory has handed out and not got back.
long directoryReferences();
