// The control panel: turns what the person does into calls of the page, the folders and the store. Which event leads to
// which call stands in panel.cpp, what the call is in panel_actions.cpp.
#pragma once

#include "host/accounts.h"
#include "host/cell_editor.h"
#include "host/folder_box.h"
#include "host/quota_list.h"
#include "host/rule_page.h"
#include "host/window/one_answer.h"
#include "host/window/panel_window.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace host {

class Panel final : public PanelWindow {
public:
    /// Makes the quota list of a dialog, given with the list's control id.
    using ListMaker = std::function<std::unique_ptr<QuotaList>(HWND dialog, int id)>;

    explicit Panel(ListMaker newList)
        : m_newList(std::move(newList))
    {
    }

    /// Opens the window and fills it. @param folders  to be shown beside those that the store knows.
    /// @return true when the window could be made.
    bool open(HINSTANCE instance, const std::vector<std::wstring>& folders);

private:
    void setUp() override;
    void tearDown() override;
    void command(int id, int code) override;
    void notified(const NMHDR& header) override;
    bool posted(UINT message) override;
    void resized() override { m_page->fitColumns(); }
    void updateMenu(HMENU menu) override;
    bool mayClose() override;
    bool hasUnsavedWork() const override { return m_modified || m_cell->isOpen(); }

    void keyInList(WORD key);
    void leaveCell();
    void enterPressed();

    void addFolder(const std::wstring& name);
    void showFolders(const std::vector<std::wstring>& folders);
    void removeFolders();
    void addFor(void* sid);
    template <class Chooser>
    void addForChosen(Chooser&& choose);
    void addForAccount();
    void addForOwner();
    bool ownersFirst() const;
    void turnOwnersFirst();
    void edit();
    void editRow(int row);
    void drop();
    bool apply();
    void reload();
    void openDialogOf(int menuEntry);
    void openCell(int row);
    bool finishCell();

    void rulesChanged();
    void selectionChanged();
    void updateRuleButtons();

    /// Makes calls that may load or store something, and reports what the store could not do.
    template <class Call>
    void withStore(const wchar_t* whatFailed, Call&& call);
    void reportStore(const std::wstring& whatFailed, const std::wstring& error);

    ListMaker m_newList;
    std::unique_ptr<FolderBox> m_folders;
    std::unique_ptr<RulePage> m_page;
    std::unique_ptr<CellEditor> m_cell;
    std::unique_ptr<OneAnswer> m_selection;
    bool m_modified = false;
    bool m_mayEdit = false; // administrators only
};

} // namespace host
