// A visit to a list editor: what a person does there, step by step.
#pragma once

#include "res/resource.h"
#include "tests/support/dialog_script.h"
#include "tests/support/list_view.h"
#include "tests/support/policy_store.h"
#include "tests/support/window_text.h"

#include <string>

class EditorVisit {
public:
    using OnList = std::function<void(HWND dialog, const ListView& list)>;
    using OnEntry = std::function<void(HWND entry)>;

    explicit EditorVisit(PolicyStore& store, int listId = IDC_POLICY_LIST)
        : m_store(store)
        , m_listId(listId)
    {
    }

    /// Presses "Add...". The store's calls up to here are forgotten.
    EditorVisit& add();

    /// Selects a row and asks for its entry, as "Edit..." does. The store's calls up to here are forgotten.
    EditorVisit& edit(int row);

    /// Selects a row and removes it. The store's calls up to here are forgotten.
    EditorVisit& remove(int row);

    /// Something on the list dialog.
    EditorVisit& list(OnList act);

    /// Something on the dialog that the list dialog has opened; it must have this caption.
    EditorVisit& entry(std::string caption, OnEntry act);

    /// Types into the entry dialog's one edit, and presses OK.
    EditorVisit& enter(std::string caption, std::wstring text);

    /// Cancels a new entry, which asks nothing of the store, then asks for the first entry, types, and closes it.
    EditorVisit& leaveEntries(std::string caption);

    /// Presses OK or Cancel in whatever dialog is in front.
    EditorVisit& press(int id);

    /// In the account chooser: types an account's exact name and presses the default button.
    EditorVisit& chooseByName(std::wstring name);

    /// Opens the editor and goes through the steps.
    intptr_t run(intptr_t (*open)(HWND));

    DialogScript script;

private:
    PolicyStore& m_store;
    int m_listId;
};
