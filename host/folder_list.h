// The box of the folders whose rules the page shows.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace host {

class FolderList {
public:
    explicit FolderList(HWND box)
        : box_(box)
    {
    }

    /// Shows a folder at the end of the list.
    /// @param name  tidy name that the list does not have yet.
    void add(const std::wstring& name);

    /// Selects a folder that is shown and no other.
    void selectOnly(const std::wstring& name);

    bool has(const std::wstring& name) const;

    /// All folders, in the order of the box.
    const std::vector<std::wstring>& all() const { return names_; }

    std::vector<std::wstring> selected() const;

    /// Takes folders out of the list, if it has them.
    void remove(const std::vector<std::wstring>& names);

private:
    int indexOf(const std::wstring& name) const;
    void fitScrollBar();

    HWND box_;
    std::vector<std::wstring> names_; // entry i of the box is names_[i]
};

/// Checks a folder that a person typed.
/// @param name  tidy name.
/// @return why it cannot be shown; empty when it can.
std::wstring whyNotAFolder(const std::wstring& name);

/// Lets a person choose a folder. @return its name; empty when the choice was cancelled.
std::wstring browseForFolder(HWND owner);

} // namespace host
