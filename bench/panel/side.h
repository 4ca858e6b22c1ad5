// A panel's window, step by step as a person works in it.
#pragma once

#include <windows.h>

#include <memory>

/// Each function is one measure, and returns when its window has done and painted all. They are called in the order in
/// which they stand here.
class PanelSide {
public:
    virtual ~PanelSide() = default;

    /// Shows the window with all rules of all folders that the store knows.
    virtual void open() = 0;
    virtual void selectAll() = 0;
    /// A click on one row: nothing else stays selected.
    virtual void clickOne() = 0;
    /// A click on the heading of the uses.
    virtual void sort() = 0;
    /// Quota Settings for the selected row, with other limits.
    virtual void edit() = 0;
    /// Removes the selected rows.
    virtual void drop() = 0;
    virtual void apply() = 0;
    virtual void close() = 0;

    /// The list of rules, while the window is open.
    virtual HWND list() const = 0;
};

/// The sample panel.
std::unique_ptr<PanelSide> samplePanel();

/// A window of the same template whose list, box and buttons are given the same by nobody but themselves: what is in a row
/// is known, and whatever a panel must find out about its rules is known as well.
std::unique_ptr<PanelSide> barePanel();

inline constexpr wchar_t kSettingsCaption[] = L"Quota Settings";

/// A window of this thread by its caption; null when there is none.
HWND windowOfThread(const wchar_t* caption);
