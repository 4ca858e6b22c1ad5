// The control panel's window: turns what the person does into calls of the page, the folders and the store.
#pragma once

#include "host/accounts.h"
#include "host/cell_editor.h"
#include "host/folder_icon.h"
#include "host/folder_list.h"
#include "host/list_calls.h"
#include "host/one_answer.h"
#include "host/rule_page.h"
#include "host/status_line.h"

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace host {

class PanelWindow {
public:
    /// Opens the window and fills it. @param folders  to be shown beside those that the store knows.
    /// @param calls  the form of the list functions to use.
    /// @return true when the window could be made.
    bool open(HINSTANCE instance, const std::vector<std::wstring>& folders, const ListCalls& calls);

    /// Runs until the window is closed.
    void run();

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR handle(UINT message, WPARAM wParam, LPARAM lParam);
    void setUp();
    void tearDown();

    void command(int id, int code);
    void notified(const NMHDR& header);
    void keyInList(WORD key);
    void leaveCell();
    void enterPressed();
    void updateMenu(HMENU menu);

    void addTypedFolder(const std::wstring& typed);
    void showFolders(const std::vector<std::wstring>& folders);
    void removeFolders();
    void addFor(void* sid);
    void addForAccount();
    void addForOwner();
    bool ownersFirst() const;
    void turnOwnersFirst();
    void addForChosen(const AccountChoice& account, const std::wstring& error);
    void ruleEdited(const std::wstring& error);
    void updateRuleButtons();
    void edit();
    void editRow(int row);
    void drop();
    bool apply();
    void reload();
    void openDialogOf(int menuEntry);
    bool hasOpenDialog();
    bool mayClose();
    bool mayEndSession();

    void openCell(int row);
    bool finishCell();
    void rulesChanged();
    void selectionChanged();
    void enable(int id, bool enabled);
    void reportStore(const std::wstring& whatFailed, const std::wstring& error);

    HINSTANCE m_instance = nullptr;
    HWND m_window = nullptr;
    const ListCalls* m_calls = nullptr;
    OwnIcon m_folderIcon; // the button that shows it does not own it
    std::unique_ptr<FolderList> m_folders;
    std::unique_ptr<RulePage> m_page;
    std::unique_ptr<CellEditor> m_cell;
    std::unique_ptr<StatusLine> m_status;
    std::unique_ptr<OneAnswer> m_selection;
    bool m_modified = false;
    bool m_mayEdit = false; // administrators only
};

} // namespace host
