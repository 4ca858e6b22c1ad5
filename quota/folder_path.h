// Paths of folders as rules carry them.
#pragma once

/// Replaces backslashes by forward slashes, in place.
void useForwardSlashes(wchar_t* path);

/// Whether two paths name the same folder, without regard to case and to the kind of slash. The backslashes of
/// both become forward slashes, in place and for good.
bool sameFolder(wchar_t* a, wchar_t* b);
