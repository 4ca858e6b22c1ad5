// The last component of a path.
#pragma once

/// @return what follows the last backslash, inside `path` itself; the whole text when it has none.
const wchar_t* pathTail(const wchar_t* path);
