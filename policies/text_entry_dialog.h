// The entry dialog of a list whose entries are typed as one text.
#pragma once

#include "frame/crash_guard.h"

/// What tells one entry dialog from another; all of them have the edit IDC_ENTRY_TEXT.
struct TextEntryDialog {
    int templateId;
    CrashSite site;
    void (*onInit)(HWND dialog);            ///< after the edit has got the text; null for nothing more to do
    void (*onCommand)(HWND dialog, int id); ///< the buttons beside OK and Cancel
    const wchar_t* (*taken)(
        const wchar_t* typed); ///< the part of the typed text that OK takes; null: all of it
};

/// Shows an entry dialog modally.
/// @param text  text to start with, null for none.
/// @return the end code: 0 after Cancel, -1 when the dialog could not be shown, otherwise the 32-bit value that
///         stands for a copy of the text.
INT_PTR openTextEntry(const TextEntryDialog& entry, HWND owner, const wchar_t* text);

/// The text that an end code stands for.
/// @return a malloc block that passes to the caller, empty when nothing was typed; null when there is none.
wchar_t* enteredText(INT_PTR endCode);
