// A search for the entries of a folder.
#pragma once

#include "frame/platform.h"
#include "store/owned.h"

#include <string>

/// `path` ending in a backslash, one being added when it is missing.
std::wstring withBackslash(std::wstring path);

/// One search from FindFirstFileW to FindClose.
///     FileSearch search(pattern);
///     for (bool found = search.started(); found; found = search.next()) { ... search.entry() ... }
class FileSearch {
public:
    /// @param pattern  path with wildcards.
    explicit FileSearch(const std::wstring& pattern);

    /// Whether the platform gave a search, whose first entry is then there.
    bool started() const { return m_search != nullptr; }
    /// Whether the pattern named a device in place of a file: the platform then gives a number that is no handle.
    bool foundDevice() const { return m_foundDevice; }
    bool next();

    const WIN32_FIND_DATAW& entry() const { return m_entry; }
    bool has(DWORD attributes) const { return (m_entry.dwFileAttributes & attributes) != 0; }

private:
    WIN32_FIND_DATAW m_entry{};
    Owned<HANDLE, FindClose> m_search;
    bool m_foundDevice = false;
};
