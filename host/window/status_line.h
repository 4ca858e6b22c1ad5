// The line at the window's foot: rules, unsaved changes, the store's last error, its data folder.
#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace host {

class StatusLine {
public:
    explicit StatusLine(HWND bar)
        : m_bar(bar)
    {
    }

    /// Fits the parts to the bar's width.
    void resize();

    void showRules(int rules, size_t folders);
    void showModified(bool modified);

    /// Whether the panel runs for an administrator, who may change rules.
    void showRights(bool administrator);

    /// @param error  empty: none since the last call that did its work.
    void showError(const std::wstring& error);

    void showDataFolder(const std::wstring& folder);

private:
    static constexpr int kParts = 5;

    void show(size_t part, const std::wstring& text);

    HWND m_bar;
    std::array<std::wstring, kParts> m_texts; // whole; the bar may show them shortened
};

} // namespace host
