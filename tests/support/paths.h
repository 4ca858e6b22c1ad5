// A list of folders as a host hands it in.
#pragma once

#include "corvane_types.h"

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

/// The strings are the list's own and may be rewritten in place.
class Paths {
public:
    Paths(std::initializer_list<std::wstring> folders)
        : m_folders(folders)
    {
        m_list = static_cast<PathList*>(std::malloc(sizeof(PathList) + m_folders.size() * sizeof(wchar_t*)));
        m_list->count = static_cast<int32_t>(m_folders.size());
        for (size_t i = 0; i < m_folders.size(); ++i) {
            m_list->paths[i] = m_folders[i].data();
        }
    }
    ~Paths() { std::free(m_list); }
    Paths(const Paths&) = delete;
    Paths& operator=(const Paths&) = delete;

    // NOLINTNEXTLINE: stands for a literal argument
    operator const PathList*() const { return m_list; }

    size_t size() const { return m_folders.size(); }
    const std::wstring& operator[](size_t index) const { return m_folders[index]; }

private:
    std::vector<std::wstring> m_folders;
    PathList* m_list;
};
