// A visit to a list editor: what a person does there, step by step.
#pragma once

#include "res/resource.h"
#include "tests/support/dialog_script.h"
#include "tests/support/list_view.h"
#include "tests/support/policy_store.h"
#include "tests/support/window_text.h"

#include <string>
#include <vector>

class EditorVisit {
public:
    using OnList = std::function<void(HWND dialog, const ListView& list)>;
    using OnEntry = std::function<void(HWND entry)>;

    /// @param open   of the editor.
    /// @param entry  caption of the dialog that the list dialog opens.
    EditorVisit(PolicyStore& store, intptr_t (*open)(HWND), std::string entry, int listId = IDC_POLICY_LIST)
        : m_store(store)
        , m_open(open)
        , m_entry(std::move(entry))
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

    /// What the list shows by now, and its item data.
    EditorVisit& rows(std::vector<std::string> expected);
    EditorVisit& data(std::vector<LPARAM> expected);

    /// The store's calls since they were forgotten or compared last. They are compared on the list.
    EditorVisit& calls(std::vector<std::string> expected);
    EditorVisit& forget();

    /// Something on the dialog that the list dialog has opened; it must have its caption.
    EditorVisit& entry(OnEntry act);

    /// What stands in the entry dialog's one edit, and as its account.
    EditorVisit& shows(std::string text);
    EditorVisit& showsAccount(std::string text);

    /// Types into the entry dialog's one edit, and presses OK.
    EditorVisit& enter(std::wstring text);

    /// Cancels a new entry, which asks nothing of the store, then asks for the first entry, types, and closes it.
    EditorVisit& leaveEntries();

    /// Presses OK or Cancel in whatever dialog is in front.
    EditorVisit& press(int id);

    /// In the account chooser: types an account's exact name and presses the default button; or Cancel.
    EditorVisit& chooseByName(std::wstring name);
    EditorVisit& chooseNobody();

    /// Opens the editor and goes through the steps.
    intptr_t run();

    /// The same, with OK or Cancel at the end. It must give 0.
    void ok();
    void cancel();

    /// The calls that are to be compared, by what they have in them; all when this is empty.
    std::vector<std::string> heeded;
    std::vector<std::string> takeCalls();

    DialogScript script;

private:
    EditorVisit& inDialog(std::string caption, OnEntry act);

    PolicyStore& m_store;
    intptr_t (*m_open)(HWND);
    std::string m_entry;
    int m_listId;
};
