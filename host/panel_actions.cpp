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
    const HWND edit = GetDlgItem(window_, IDC_FOLDER_EDIT);
    const std::wstring folder = tidyFolder(typed);
    std::wstring problem;
    if (folders_->has(folder)) {
        problem = L"The folder \"" + folder + L"\" is already shown.";
    } else {
        problem = whyNotAFolder(folder);
    }
    if (!problem.empty()) {
        say(window_, MB_ICONINFORMATION, L"Add Folder", problem);
        SetFocus(edit);
        SendMessageW(edit, EM_SETSEL, 0, -1);
        return;
    }
    SetWindowTextW(edit, L"");
    showFolders({folder});
    folders_->selectOnly(folder); // the next thing to do is to add a rule for it
    selectionChanged();
}

void PanelWindow::showFolders(const std::vector<std::wstring>& folders)
{
    const std::wstring error = page_->show(folders_->add(folders));
    rulesChanged();
    selectionChanged();
    if (!error.empty()) {
        reportStore(L"Not all rules could be read.", error);
    }
}

void PanelWindow::removeFolders()
{
    const std::vector<std::wstring> chosen = folders_->selected();
    if (page_->isModified(chosen) && ask(window_, MB_YESNO | MB_DEFBUTTON2, kUnsaved,
                                         L"Rules of these folders have unsaved changes, which would be "
                                         L"lost.\n\nRemove the folders from view?") != IDYES)
    {
        return;
    }
    page_->hide(chosen);
    folders_->remove(chosen);
    SetFocus(GetDlgItem(window_, IDC_FOLDERS));
    rulesChanged();
    selectionChanged();
}

void PanelWindow::addFor(void* sid)
{
    const std::vector<std::wstring> chosen = folders_->selected();
    if (mayEdit_ && !chosen.empty()) {
        const std::wstring error = page_->add(sid, chosen);
        rulesChanged();
        if (!error.empty()) {
            reportStore(kNotAllDone, error);
        }
    }
}

void PanelWindow::addForAccount()
{
    AccountChoice account{};
    const std::wstring error = storeErrorsOf([&] { account = chooseAccount(window_); });
    addForChosen(account, error);
}

void PanelWindow::addForOwner()
{
    AccountChoice account{};
    const std::wstring error =
        storeErrorsOf([&] { account = chooseAccountOwnersFirst(window_, folders_->selected()); });
    addForChosen(account, error);
}

bool PanelWindow::ownersFirst() const
{
    return getButtonState(window_, IDC_OWNERS_FIRST) == BST_CHECKED;
}

/// The box does not check itself: a click that the panel refuses, over a cell that holds no limit, is to change nothing.
void PanelWindow::turnOwnersFirst()
{
    setButtonState(window_, IDC_OWNERS_FIRST, ownersFirst() ? BST_UNCHECKED : BST_CHECKED);
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
    if (mayEdit_) {
        ruleEdited(page_->edit());
    }
}

void PanelWindow::editRow(int row)
{
    if (mayEdit_) {
        ruleEdited(page_->editRow(row));
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
    if (!mayEdit_) {
        return;
    }
    for (const int id : {IDC_EDIT, IDC_DROP}) {
        if (GetFocus() == GetDlgItem(window_, id) && page_->selectedRow() < 0) {
            SetFocus(page_->list()); // a disabled window gets no keys
        }
    }
    page_->enableForSelection(IDC_EDIT, IDC_DROP);
}

void PanelWindow::drop()
{
    if (mayEdit_) {
        page_->drop();
        rulesChanged();
    }
}

void PanelWindow::openDialogOf(int menuEntry)
{
    // The library's dialogs load and store by themselves, and say nothing when the store cannot.
    const std::wstring error = storeErrorsOf([&] { openLibraryDialog(window_, menuEntry); });
    if (!error.empty()) {
        reportStore(kNotAllDone, error);
    }
}

bool PanelWindow::apply()
{
    if (!modified_) {
        return true;
    }
    const RulePage::Stored stored = page_->store(folders_->all());
    if (!stored.done) {
        reportStore(L"The rules were not stored.", stored.problems);
        return false;
    }
    status_->showError({});
    rulesChanged();
    if (!stored.problems.empty()) {
        reportStore(L"The rules are stored. There is more to know:", stored.problems);
    }
    return true;
}

void PanelWindow::reload()
{
    if (modified_ &&
        ask(window_, MB_YESNO | MB_DEFBUTTON2, kUnsaved,
            L"Reading the stored rules again drops all unsaved changes.\n\nReload all the same?") != IDYES)
    {
        return;
    }
    page_->clear();
    const std::wstring error = page_->show(folders_->all());
    status_->showError({});
    rulesChanged();
    if (!error.empty()) {
        reportStore(L"Not all rules could be read.", error);
    }
}

/// Whether a dialog or a box is open, behind which the panel cannot go: what opened it goes on when it closes. The
/// person is shown it.
bool PanelWindow::hasOpenDialog()
{
    if (IsWindowEnabled(window_)) {
        return false;
    }
    SetForegroundWindow(GetLastActivePopup(window_));
    MessageBeep(MB_ICONWARNING);
    return true;
}

/// Asks nothing: the system has its own screen for programs that want the session to go on, with the reason.
bool PanelWindow::mayEndSession()
{
    const bool dialogIsOpen = IsWindowEnabled(window_) == FALSE;
    if (!dialogIsOpen && !modified_ && !cell_->isOpen()) {
        return true;
    }
    ShutdownBlockReasonCreate(window_,
                              dialogIsOpen ? L"A dialog is open." : L"The rules have unsaved changes.");
    return false;
}

bool PanelWindow::mayClose()
{
    if (!finishCell()) {
        return false;
    }
    if (!modified_) {
        return true;
    }
    switch (ask(window_, MB_YESNOCANCEL, kUnsaved,
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
    if (!mayEdit_) {
        return;
    }
    cell_->open(row);
    if (cell_->isOpen()) {
        enable(IDC_APPLY, true); // it would take what is being typed
    }
}

bool PanelWindow::finishCell()
{
    if (!cell_->isOpen()) {
        return true;
    }
    const bool finished = cell_->finish();
    if (finished) {
        rulesChanged();
    }
    return finished;
}

void PanelWindow::rulesChanged()
{
    updateRuleButtons();
    modified_ = page_->isModified();
    SetWindowTextW(window_, modified_ ? (std::wstring(kCaption) + L" - unsaved changes").c_str() : kCaption);
    enable(IDC_APPLY, modified_);
    status_->showRules(page_->count(), folders_->all().size());
    status_->showModified(modified_);
}

void PanelWindow::selectionChanged()
{
    const std::vector<std::wstring> chosen = folders_->selected();
    enable(IDC_FOLDER_REMOVE, !chosen.empty());
    enable(IDC_ADD_FOR_ACCOUNT, mayEdit_ && !chosen.empty());
    enable(IDC_OWNERS_FIRST, mayEdit_ && !chosen.empty());
    enable(IDC_ADD_FOR_ANYONE, mayEdit_ && !chosen.empty());
    std::wstring hint = L"Select the folders that new rules are for.";
    if (!mayEdit_) {
        hint = L"Only an administrator can change rules and policies.";
    } else if (chosen.size() == 1) {
        hint = L"New rules are for " + chosen.front() + L".";
    } else if (chosen.size() > 1) {
        hint = L"New rules are for each of the " + std::to_wstring(chosen.size()) + L" selected folders.";
    }
    SetWindowTextW(GetDlgItem(window_, IDC_FOLDER_HINT), hint.c_str());
}

void PanelWindow::enable(int id, bool enabled)
{
    const HWND control = GetDlgItem(window_, id);
    if (!enabled && GetFocus() == control) {
        SetFocus(page_->list()); // a disabled window gets no keys
    }
    EnableWindow(control, enabled);
}

void PanelWindow::reportStore(const std::wstring& whatFailed, const std::wstring& error)
{
    constexpr size_t kMostLines = 12;
    status_->showError(error);
    say(window_, MB_ICONERROR, L"Quota Store", whatFailed + L"\n\n" + firstLines(error, kMostLines));
}

} // namespace host
