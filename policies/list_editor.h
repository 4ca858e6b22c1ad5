// The list editor: a dialog that loads a rule set of the store, edits it entry by entry, and stores it on OK.
// Written once; each editor is a description of what is its own.
#pragma once

#include "frame/crash_guard.h"
#include "frame/list_ctrl.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// An entry as it is shown: its text, and the index in the store that its row carries as item data.
struct ListEntry {
    std::uint32_t index;
    std::wstring text;
};

struct ListEditor {
    int templateId;
    int listId;
    CrashSite site;
    std::span<const ListColumn> columns;

    void (*load)();

    /// The text of an entry while the list is filled; null past the last one.
    const wchar_t* (*entry)(std::uint32_t index);

    /// Fills the further columns of a row that was inserted; null when there are none.
    void (*render)(const CListCtrl& list, int row, std::uint32_t index);

    /// Asks for a new entry and adds it to the store. @return nothing when cancelled.
    std::optional<ListEntry> (*add)(HWND dialog);

    /// Asks for the changes of an entry and makes them in the store. @return its text, nothing when cancelled.
    std::optional<std::wstring> (*edit)(HWND dialog, std::uint32_t index);

    void (*remove)(std::uint32_t index);

    /// Makes the list persistent and, where the store has a call for it, active.
    void (*store)();

    void (*free)();
};

/// Shows a list editor modally.
/// @param editor  must outlive the dialog.
/// @return 0 after OK and after Cancel, -1 when the dialog could not be shown.
INT_PTR openListEditor(const ListEditor& editor, HWND owner);
