#include "host/panel_window.h"

#include "host/panel_layout.h"
#include "host/resource.h"
#include "host/window_text.h"

#include "corvane.h"
#include "lornix_host.h"

#include <commctrl.h>

#include <initializer_list>

namespace host {
namespace {

constexpr UINT kCellDone = WM_APP;
constexpr UINT kRowsSelected = WM_APP + 1;

std::vector<std::wstring> knownFolders()
{
    const std::unique_ptr<PathList, decltype(&lornixFreeFolders)> known(lornixKnownFolders(),
                                                                        lornixFreeFolders);
    std::vector<std::wstring> names;
    if (known != nullptr) {
        wchar_t* const* paths = known->paths;
        names.assign(paths, paths + known->count);
    }
    return names;
}

} // namespace

bool PanelWindow::open(HINSTANCE instance, const std::vector<std::wstring>& folders, const ListCalls& calls)
{
    m_instance = instance;
    m_calls = &calls;
    if (CreateDialogParamW(instance, MAKEINTRESOURCEW(IDD_PANEL), nullptr, procedure,
                           reinterpret_cast<LPARAM>(this)) == nullptr)
    {
        return false;
    }
    ShowWindow(m_window, SW_SHOWDEFAULT);
    UpdateWindow(m_window);

    std::vector<std::wstring> known = knownFolders();
    const std::wstring error = lornixLastError();
    if (known.empty() && !error.empty()) { // else the rules of the folders tell the same
        reportStore(L"The folders with rules could not all be read.", error);
    }
    showFolders(known);
    for (const std::wstring& folder : folders) {
        if (m_folders->has(folder)) { // asked for again at every start, it is known to the store by and by
            m_folders->selectOnly(folder);
            selectionChanged();
        } else {
            addTypedFolder(folder);
        }
    }
    return true;
}

void PanelWindow::run()
{
    const HACCEL accelerators = LoadAcceleratorsW(m_instance, MAKEINTRESOURCEW(IDA_PANEL));
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (TranslateAcceleratorW(m_window, accelerators, &message) == 0 &&
            !IsDialogMessageW(m_window, &message))
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

INT_PTR CALLBACK PanelWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        auto* self = reinterpret_cast<PanelWindow*>(lParam);
        self->m_window = window;
        self->setUp();
        SetWindowLongPtrW(window, DWLP_USER, lParam); // last: what the controls tell before is of no interest
        return TRUE;
    }
    auto* self = reinterpret_cast<PanelWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    return self == nullptr ? FALSE : self->handle(message, wParam, lParam);
}

INT_PTR PanelWindow::handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_COMMAND:
        command(LOWORD(wParam), HIWORD(wParam));
        return TRUE;
    case WM_NOTIFY:
        notified(*reinterpret_cast<const NMHDR*>(lParam));
        return FALSE;
    case WM_INITMENUPOPUP:
        updateMenu(reinterpret_cast<HMENU>(wParam));
        return TRUE;
    case kCellDone:
        if (m_cell->finish()) {
            rulesChanged(); // also for a cell that was given up: Apply is as before it was opened
        }
        return TRUE;
    case kRowsSelected:
        m_selection->arrived();
        updateRuleButtons();
        return TRUE;
    case WM_SIZE:
        if (wParam != SIZE_MINIMIZED) {
            layOutPanel(m_window);
            m_status->resize();
            m_page->fitColumns();
        }
        return TRUE;
    case WM_GETMINMAXINFO: {
        const SIZE smallest = smallestPanel(m_window);
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {smallest.cx, smallest.cy};
        return TRUE;
    }
    case WM_CLOSE:
        if (!hasOpenDialog() && mayClose()) {
            DestroyWindow(m_window);
        }
        return TRUE;
    case WM_QUERYENDSESSION:
        SetWindowLongPtrW(m_window, DWLP_MSGRESULT, mayEndSession() ? TRUE : FALSE);
        return TRUE;
    case WM_ENDSESSION:
        if (wParam == FALSE) {
            ShutdownBlockReasonDestroy(
                m_window); // the session goes on, and the reason is not for the next time
        }
        return TRUE;
    case WM_DESTROY:
        tearDown();
        return TRUE;
    default:
        return FALSE;
    }
}

void PanelWindow::setUp()
{
    m_folders = std::make_unique<FolderList>(GetDlgItem(m_window, IDC_FOLDERS));
    m_page = std::make_unique<RulePage>(m_window, IDC_RULES, *m_calls);
    m_cell = std::make_unique<CellEditor>(m_window, IDC_RULES, *m_page, kCellDone);
    m_status = std::make_unique<StatusLine>(GetDlgItem(m_window, IDC_STATUS));
    m_selection = std::make_unique<OneAnswer>(m_window, kRowsSelected);
    const auto icon = [this](int widthMetric, int heightMetric) {
        return reinterpret_cast<LPARAM>(LoadImageW(m_instance, MAKEINTRESOURCEW(IDI_PANEL), IMAGE_ICON,
                                                   GetSystemMetrics(widthMetric),
                                                   GetSystemMetrics(heightMetric), LR_SHARED));
    };
    SendMessageW(m_window, WM_SETICON, ICON_BIG, icon(SM_CXICON, SM_CYICON));
    SendMessageW(m_window, WM_SETICON, ICON_SMALL, icon(SM_CXSMICON, SM_CYSMICON));

    m_folderIcon = folderIcon();
    if (m_folderIcon != nullptr) {
        setButtonIcon(m_window, IDC_FOLDER_BROWSE, m_folderIcon.get());
    }

    layOutPanel(m_window);
    m_status->resize();
    m_page->fitColumns();
    m_status->showDataFolder(lornixDataFolder());
    m_status->showError({});
    m_mayEdit = isAdmin() != 0;
    m_status->showRights(m_mayEdit);
    enable(IDC_EDIT, false);
    enable(IDC_DROP, false);
    rulesChanged();
    selectionChanged();
}

void PanelWindow::tearDown()
{
    SetWindowLongPtrW(m_window, DWLP_USER, 0);
    m_cell.reset();
    m_page.reset();
    PostQuitMessage(0);
}

void PanelWindow::command(int id, int code)
{
    if (id == IDC_FOLDERS) {
        if (code == LBN_SELCHANGE) {
            selectionChanged();
        }
        return;
    }
    const bool fromControl = GetDlgItem(m_window, id) != nullptr;
    if ((fromControl && code > 1) || !finishCell()) { // 0 is a click or a menu entry, 1 an accelerator
        return;
    }
    switch (id) {
    case IDOK:
        return enterPressed();
    case IDC_FOLDER_ADD:
        return addTypedFolder(windowText(GetDlgItem(m_window, IDC_FOLDER_EDIT)));
    case IDC_FOLDER_BROWSE:
        if (const std::wstring chosen = browseForFolder(m_window); !chosen.empty()) {
            addTypedFolder(chosen);
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
        PostMessageW(m_window, WM_CLOSE, 0, 0);
        return;
    default:
        openDialogOf(id);
        return; // Esc, among others: a window with unsaved work does not close by one key
    }
}

void PanelWindow::enterPressed()
{
    const HWND focus = GetFocus();
    if (focus == GetDlgItem(m_window, IDC_FOLDER_EDIT)) {
        addTypedFolder(windowText(focus));
    } else if (focus == m_page->list()) {
        edit();
    }
}

void PanelWindow::notified(const NMHDR& header)
{
    if (header.hwndFrom == ListView_GetHeader(m_page->list()) &&
        (header.code == HDN_BEGINTRACKW || header.code == HDN_BEGINDRAG))
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

void PanelWindow::leaveCell()
{
    if (m_cell->isOpen()) {
        PostMessageW(m_window, kCellDone, 0, 0); // not now: the list is in the middle of what it tells
    }
}

void PanelWindow::keyInList(WORD key)
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

void PanelWindow::updateMenu(HMENU menu)
{
    const auto set = [menu](UINT id, bool possible) {
        EnableMenuItem(menu, id, MF_BYCOMMAND | (possible ? MF_ENABLED : MF_GRAYED));
    };
    const bool ruleSelected = m_page->selectedRow() >= 0;
    set(IDC_APPLY, m_modified || m_cell->isOpen());
    const bool folderSelected = m_mayEdit && !m_folders->selected().empty();
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
