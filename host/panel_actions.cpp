// What the panel does when it is told to; how it comes to be told stands in panel_window.cpp.
#include "host/first_lines.h"
#include "host/folder_name.h"
#include "host/library_dialogs.h"
#include "host/message.h"
#include "host/panel_window.h"
#include "host/resource.h"
#include "host/store_errors.h"

#include "corvane.h"

namespace host {
namespace {

constexpr wchar_t kCaption[] = L"Quota Control Panel";
constexpr wchar_t kUnsaved[] = L"Unsaved Changes";
constexpr wchar_t kNotAllDone[] = L"Not everything could be read or stored.";

} // namespace

void PanelWindow::addTypedFolder(const std::wstring& typed)
{
    const HWND edit = GetDlgItem(m_window, IDC_FOLDER_EDIT);
    const std::wstring folder = tidyFolder(typed);
    std::wstring problem;
    if (m_folders->has(folder)) {
        problem = L"The folder \"" + folder + L"\" is already shown.";
    } else {
        problem = whyNotAFolder(folder);
    }
    if (!problem.empty()) {
        say(m_window, MB_ICONINFORMATION, L"Add Folder", problem);
        SetFocus(edit);
        SendMessageW(edit, EM_SETSEL, 0, -1);
        return;
    }
    SetWindowTextW(edit, L"");
    showFolders({folder});
    m_folders->selectOnly(folder); // the next thing to do is to add a rule for it
    selectionChanged();
}

void PanelWindow::showFolders(const std::vector<std::wstring>& folders)
{
    const std::wstring error = m_page->show(m_folders->add(folders));
    rulesChanged();
    selectionChanged();
    if (!error.empty()) {
        reportStore(L"Not all rules could be read.", error);
    }
}

void PanelWindow::removeFolders()
{
    const std::vector<std::wstring> chosen = m_folders->selected();
    if (m_page->isModified(chosen) && ask(m_window, MB_YESNO | MB_DEFBUTTON2, kUnsaved,
                                          L"Rules of these folders have unsaved changes, which would be "
                                          L"lost.\n\nRemove the folders from view?") != IDYES)
    {
        return;
    }
    m_page->hide(chosen);
    m_folders->remove(chosen);
    SetFocus(GetDlgItem(m_window, IDC_FOLDERS));
    rulesChanged();
    selectionChanged();
}

void PanelWindow::addFor(void* sid)
{
    const std::vector<std::wstring> chosen = m_folders->selected();
    if (m_mayEdit && !chosen.empty()) {
        const std::wstring error = m_page->add(sid, chosen);
        rulesChanged();
        if (!error.empty()) {
            reportStore(kNotAllDone, error);
        }
    }
}

void PanelWindow::addForAccount()
{
    AccountChoice account{};
    const std::wstring error = storeErrorsOf([&] { account = chooseAccount(m_window); });
    addForChosen(account, error);
}

void PanelWindow::addForOwner()
{
    AccountChoice account{};
    const std::wstring error =
        storeErrorsOf([&] { account = chooseAccountOwnersFirst(m_window, m_folders->selected()); });
    addForChosen(account, error);
}

bool PanelWindow::ownersFirst() const
{
    return getButtonState(m_window, IDC_OWNERS_FIRST) == BST_CHECKED;
}

/// The box does not check itself: a click that the panel refuses, over a cell that holds no limit, is to change nothing.
void PanelWindow::turnOwnersFirst()
{
    setButtonState(m_window, IDC_OWNERS_FIRST, ownersFirst() ? BST_UNCHECKED : BST_CHECKED);
}

void PanelWindow::addForChosen(const AccountChoice& account, const std::wstring& error)
{
    if (!error.empty()) {
        reportStore(kNotAllDone, error);
    }
    if (account.made) {
        addFor(account.sid);
    }
}

void PanelWindow::edit()
{
    if (m_mayEdit) {
        ruleEdited(m_page->edit());
    }
}

void PanelWindow::editRow(int row)
{
    if (m_mayEdit) {
        ruleEdited(m_page->editRow(row));
    }
}

void PanelWindow::ruleEdited(const std::wstring& error)
{
    rulesChanged();
    if (!error.empty()) {
        reportStore(kNotAllDone, error);
    }
}

/// Edit and Drop are there for those who may change rules, while a row is selected.
void PanelWindow::updateRuleButtons()
{
    if (!m_mayEdit) {
        return;
    }
    for (const int id : {IDC_EDIT, IDC_DROP}) {
        if (GetFocus() == GetDlgItem(m_window, id) && m_page->selectedRow() < 0) {
            SetFocus(m_page->list()); // a disabled window gets no keys
        }
    }
    m_page->enableForSelection(IDC_EDIT, IDC_DROP);
}

void PanelWindow::drop()
{
    if (m_mayEdit) {
        m_page->drop();
        rulesChanged();
    }
}

void PanelWindow::openDialogOf(int menuEntry)
{
    // The library's dialogs load and store by themselves, and say nothing when the store cannot.
    const std::wstring error = storeErrorsOf([&] { openLibraryDialog(m_window, menuEntry); });
    if (!error.empty()) {
        reportStore(kNotAllDone, error);
    }
}

bool PanelWindow::apply()
{
    if (!m_modified) {
        return true;
    }
    const RulePage::Stored stored = m_page->store(m_folders->all());
    if (!stored.done) {
        reportStore(L"The rules were not stored.", stored.problems);
        return false;
    }
    m_status->showError({});
    rulesChanged();
    if (!stored.problems.empty()) {
        reportStore(L"The rules are stored. There is more to know:", stored.problems);
    }
    return true;
}

void PanelWindow::reload()
{
    if (m_modified &&
        ask(m_window, MB_YESNO | MB_DEFBUTTON2, kUnsaved,
            L"Reading the stored rules again drops all unsaved changes.\n\nReload all the same?") != IDYES)
    {
        return;
    }
    m_page->clear();
    const std::wstring error = m_page->show(m_folders->all());
    m_status->showError({});
    rulesChanged();
    if (!error.empty()) {
        reportStore(L"Not all rules could be read.", error);
    }
}

/// Whether a dialog or a box is open, behind which the panel cannot go: what opened it goes on when it closes. The
/// person is shown it.
bool PanelWindow::hasOpenDialog()
{
    if (IsWindowEnabled(m_window)) {
        return false;
    }
    SetForegroundWindow(GetLastActivePopup(m_window));
    MessageBeep(MB_ICONWARNING);
    return true;
}

/// Asks nothing: the system has its own screen for programs that want the session to go on, with the reason.
bool PanelWindow::mayEndSession()
{
    const bool dialogIsOpen = IsWindowEnabled(m_window) == FALSE;
    if (!dialogIsOpen && !m_modified && !m_cell->isOpen()) {
        return true;
    }
    ShutdownBlockReasonCreate(m_window,
                              dialogIsOpen ? L"A dialog is open." : L"The rules have unsaved changes.");
    return false;
}

bool PanelWindow::mayClose()
{
    if (!finishCell()) {
        return false;
    }
    if (!m_modified) {
        return true;
    }
    switch (ask(m_window, MB_YESNOCANCEL, kUnsaved,
                L"The rules have unsaved changes.\n\nStore them before closing?"))
    {
    case IDYES:
        return apply();
    case IDNO:
        return true;
    default:
        return false;
    }
}

void PanelWindow::openCell(int row)
{
    if (!m_mayEdit) {
        return;
    }
    m_cell->open(row);
    if (m_cell->isOpen()) {
        enable(IDC_APPLY, true); // it would take what is being typed
    }
}

bool PanelWindow::finishCell()
{
    if (!m_cell->isOpen()) {
        return true;
    }
    const bool finished = m_cell->finish();
    if (finished) {
        rulesChanged();
    }
    return finished;
}

void PanelWindow::rulesChanged()
{
    updateRuleButtons();
    m_modified = m_page->isModified();
    SetWindowTextW(m_window,
                   m_modified ? (std::wstring(kCaption) + L" - unsaved changes").c_str() : kCaption);
    enable(IDC_APPLY, m_modified);
    m_status->showRules(m_page->count(), m_folders->all().size());
    m_status->showModified(m_modified);
}

void PanelWindow::selectionChanged()
{
    const std::vector<std::wstring> chosen = m_folders->selected();
    enable(IDC_FOLDER_REMOVE, !chosen.empty());
    enable(IDC_ADD_FOR_ACCOUNT, m_mayEdit && !chosen.empty());
    enable(IDC_OWNERS_FIRST, m_mayEdit && !chosen.empty());
    enable(IDC_ADD_FOR_ANYONE, m_mayEdit && !chosen.empty());
    std::wstring hint = L"Select the folders that new rules are for.";
    if (!m_mayEdit) {
        hint = L"Only an administrator can change rules and policies.";
    } else if (chosen.size() == 1) {
        hint = L"New rules are for " + chosen.front() + L".";
    } else if (chosen.size() > 1) {
        hint = L"New rules are for each of the " + std::to_wstring(chosen.size()) + L" selected folders.";
    }
    SetWindowTextW(GetDlgItem(m_window, IDC_FOLDER_HINT), hint.c_str());
}

void PanelWindow::enable(int id, bool enabled)
{
    const HWND control = GetDlgItem(m_window, id);
    if (!enabled && GetFocus() == control) {
        SetFocus(m_page->list()); // a disabled window gets no keys
    }
    EnableWindow(control, enabled);
}

void PanelWindow::reportStore(const std::wstring& whatFailed, const std::wstring& error)
{
    constexpr size_t kMostLines = 12;
    m_status->showError(error);
    say(m_window, MB_ICONERROR, L"Quota Store", whatFailed + L"\n\n" + firstLines(error, kMostLines));
}

} // namespace host
