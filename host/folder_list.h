// The box of the folders whose rules the page shows.
#pragma once

#include <windows.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace host {

class FolderList {
public:
    explicit FolderList(HWND box)
        : m_box(box)
    {
    }

    /// Shows folders at the end of the list. Names of nothing, and folders that are shown already, are left out.
    /// @return the tidy names of those that were added.
    std::vector<std::wstring> add(const std::vector<std::wstring>& names);

    /// Selects a folder that is shown and no other.
    void selectOnly(const std::wstring& name);

    bool has(const std::wstring& name) const;

    /// All folders, in the order of the box.
    const std::vector<std::wstring>& all() const { return m_names; }

    std::vector<std::wstring> selected() const;

    /// Takes folders out of the list, if it has them.
    void remove(const std::vector<std::wstring>& names);

private:
    void fitScrollBar(const std::vector<std::wstring>& newNames);

    HWND m_box;
    std::vector<std::wstring> m_names;                // entry i of the box is m_names[i]
    std::unordered_map<std::wstring, size_t> m_byKey; // where each stands, by folderKey
    LONG m_widest = 0;                                // of the names, in pixels
};

} // namespace host
