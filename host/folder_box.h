// The upper part of the panel: the field for a folder's path, the box of the folders shown, and the line that says what
// the folders selected in it are for.
#pragma once

#include "host/folder_list.h"
#include "host/owned.h"

#include <windows.h>

#include <string>
#include <type_traits>
#include <vector>

namespace host {

class FolderBox {
public:
    explicit FolderBox(HWND panel);

    const FolderList& shown() const { return m_shown; }

    /// Shows folders. @return those that were not shown before.
    std::vector<std::wstring> add(const std::vector<std::wstring>& names) { return m_shown.add(names); }

    void selectOnly(const std::wstring& name) { m_shown.selectOnly(name); }

    /// Takes folders out of the box, which gets the focus: its button may not keep it.
    void remove(const std::vector<std::wstring>& names);

    bool hasTypingFocus() const { return GetFocus() == m_field; }

    /// What stands in the field.
    std::wstring typed() const;

    /// Lets the person choose a folder. @return its name; empty when the choice was cancelled.
    std::wstring browse() const;

    /// Checks a folder that is to be shown too. One that cannot be is explained.
    /// @return its tidy name, the field being empty for the next one; empty when it cannot be shown.
    std::wstring accepted(const std::wstring& name);

    /// Says what new rules are for. @param mayEdit  whether there can be any.
    void showHint(bool mayEdit);

private:
    HWND m_panel;
    HWND m_field;
    Owned<std::remove_pointer_t<HICON>, DestroyIcon> m_icon; // the button that shows it does not own it
    FolderList m_shown;
};

} // namespace host
