#include "host/panel.h"

#include "host/resource.h"

#include "corvane.h"
#include "lornix_host.h"

#include <commctrl.h>

#include <initializer_list>

namespace host {
namespace {

constexpr UINT kCellDone = WM_APP;
constexpr UINT kRowsSelected = WM_APP + 1;

} // namespace

void Panel::setUp()
{
    m_folders = std::make_unique<FolderBox>(window());
    m_page = std::make_unique<RulePage>(window(), IDC_RULES, m_newList(window(), IDC_RULES));
    m_cell = std::make_unique<CellEditor>(window(), IDC_RULES, *m_page, kCellDone);
    m_selection = std::make_unique<OneAnswer>(window(), kRowsSelected);
    m_mayEdit = isAdmin() != 0;
    status().showDataFolder(lornixDataFolder());
    status().showError({});
    status().showRights(m_mayEdit);
    enable(IDC_EDIT, false);
    enable(IDC_DROP, false);
    rulesChanged();
    selectionChanged();
}

void Panel::tearDown()
{
    m_cell.reset();
    m_page.reset();
}

bool Panel::posted(UINT message)
{
    switch (message) {
    case kCellDone:
        if (m_cell->finish()) {
            rulesChanged(); // also for a cell that was given up: Apply is as before it was opened
        }
        return true;
    case kRowsSelected:
        m_selection->arrived();
        updateRuleButtons();
        return true;
    default:
        return false;
    }
}

void Panel::command(int id, int code)
{
    if (id == IDC_FOLDERS) {
        if (code == LBN_SELCHANGE) {
            selectionChanged();
        }
        return;
    }
    const bool fromControl = control(id) != nullptr;
    if ((fromControl && code > 1) || !finishCell()) { // 0 is a click or a menu entry, 1 an accelerator
        return;
    }
    switch (id) {
    case IDOK:
        return enterPressed();
    case IDC_FOLDER_ADD:
        return addFolder(m_folders->typed());
    case IDC_FOLDER_BROWSE:
        if (const std::wstring chosen = m_folders->browse(); !chosen.empty()) {
            addFolder(chosen);
        }
        return;
    case IDC_FOLDER_REMOVE:
        return removeFolders();
    case IDC_ADD_FOR_ANYONE:
        return addFor(CORVANE_ANYONE);
    case IDC_ADD_FOR_ACCOUNT:
        return ownersFirst() ? addForOwner() : addForAccount();
    case IDC_OWNERS_FIRST:
        return turnOwnersFirst();
    case IDM_ADD_OWNERS_FIRST:
        return addForOwner();
    case IDC_EDIT:
        return edit();
    case IDM_EDIT_SOFT_LIMIT:
        return openCell(m_page->selectedRow());
    case IDC_DROP:
        return drop();
    case IDM_SELECT_ALL:
        return m_page->selectAll();
    case IDC_APPLY:
        apply();
        return;
    case IDC_RELOAD:
        return reload();
    case IDM_EXIT:
        PostMessageW(window(), WM_CLOSE, 0, 0);
        return;
    default:
        openDialogOf(id);
        return; // Esc, among others: a window with unsaved work does not close by one key
    }
}

void Panel::enterPressed()
{
    if (m_folders->hasTypingFocus()) {
        addFolder(m_folders->typed());
    } else if (GetFocus() == m_page->list()) {
        edit();
    }
}

void Panel::notified(const NMHDR& header)
{
    // The cheap question first: a list tells of each row that changes.
    if ((header.code == HDN_BEGINTRACKW || header.code == HDN_BEGINDRAG) &&
        header.hwndFrom == ListView_GetHeader(m_page->list()))
    {
        leaveCell(); // as for scrolling, below
    }
    if (header.hwndFrom != m_page->list()) {
        return;
    }
    switch (header.code) {
    case LVN_ITEMCHANGED:
        m_selection->heard(reinterpret_cast<const NMLISTVIEW&>(header));
        break;
    case LVN_COLUMNCLICK:
        if (finishCell()) {
            m_page->sort(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem);
        }
        break;
    case LVN_BEGINSCROLL:
        leaveCell(); // the cell moves away under its edit
        break;
    case LVN_KEYDOWN:
        keyInList(reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey);
        break;
    case NM_DBLCLK: {
        const auto& click = reinterpret_cast<const NMITEMACTIVATE&>(header);
        if (click.iItem < 0) {
            break;
        }
        if (click.iSubItem == RulePage::kSoftLimitColumn) {
            openCell(click.iItem);
        } else {
            editRow(click.iItem);
        }
        break;
    }
    default:
        break;
    }
}

void Panel::leaveCell()
{
    if (m_cell->isOpen()) {
        PostMessageW(window(), kCellDone, 0, 0); // not now: the list is in the middle of what it tells
    }
}

void Panel::keyInList(WORD key)
{
    const bool control = GetKeyState(VK_CONTROL) < 0;
    if (key == VK_DELETE) {
        drop();
    } else if (key == VK_F2) {
        openCell(m_page->selectedRow());
    } else if (key == 'A' && control) {
        m_page->selectAll();
    }
}

void Panel::updateMenu(HMENU menu)
{
    const auto set = [menu](UINT id, bool possible) {
        EnableMenuItem(menu, id, possible ? MF_BYCOMMAND | MF_ENABLED : MF_BYCOMMAND | MF_GRAYED);
    };
    const bool ruleSelected = m_page->selectedRow() >= 0;
    set(IDC_APPLY, m_modified || m_cell->isOpen());
    const bool folderSelected = m_mayEdit && !m_folders->shown().selected().empty();
    for (const UINT id :
         std::initializer_list<UINT>{IDC_ADD_FOR_ACCOUNT, IDM_ADD_OWNERS_FIRST, IDC_ADD_FOR_ANYONE})
    {
        set(id, folderSelected);
    }
    for (const UINT id : std::initializer_list<UINT>{IDC_EDIT, IDM_EDIT_SOFT_LIMIT, IDC_DROP}) {
        set(id, m_mayEdit && ruleSelected);
    }
    for (const UINT id : std::initializer_list<UINT>{IDM_NOTIFICATIONS, IDM_EXCLUDES, IDM_EXCLUDE_EXTS,
                                                     IDM_MGR_ACCOUNTS, IDM_BACKUP_TOOLS})
    {
        set(id, m_mayEdit);
    }
    set(IDM_SELECT_ALL, m_page->count() > 0);
}

} // namespace host
