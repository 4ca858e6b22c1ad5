// What is to be seen of each list editor.
#pragma once

#include "corvane.h"
#include "tests/support/policy_store.h"

#include <iosfwd>
#include <string>
#include <vector>

struct EditorCase {
    const char* name;
    intptr_t (*open)(HWND owner);
    const char* caption;
    int listId;
    const char* removeButton;
    bool hasEditButton;
    bool sorted; ///< shows the texts in ascending order; the others show the store's order reversed
    std::vector<std::string> columns; ///< as ListView tells them
    const char* crashLine;

    void (*put)(PolicyStore& store, const wchar_t* text); ///< adds an entry without anything special
    const char* moreCells;                                ///< what its row shows after the text

    std::string functions; ///< what the names of its store functions end in
    std::vector<std::string>
        readEntry;       ///< the calls that read an entry while the list is filled, # its index
    std::string readEnd; ///< the call that finds the end
    std::vector<std::string> afterStoring; ///< the calls of OK behind the first

    /// A function of its store: "loadExcludes".
    std::string call(const char* verb) const { return verb + functions; }

    /// The calls of an opening with a number of entries.
    std::vector<std::string> opening(int count) const;

    /// The calls of OK.
    std::vector<std::string> storing() const;
};

extern const std::vector<EditorCase> kEditors;

std::ostream& operator<<(std::ostream& out, const EditorCase& editor);
