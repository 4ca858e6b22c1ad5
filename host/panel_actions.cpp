// What the panel does when it is told to; how it comes to be told stands in panel_window.cpp.
#include "host/accounts.h"
#include "host/folder_name.h"
#include "host/message.h"
#include "host/panel_window.h"
#include "host/resource.h"

#include "corvane.h"

namespace host {
namespace {

constexpr wchar_t kCaption[] = L"Quota Control Panel";
constexpr wchar_t kUnsaved[] = L"Unsaved Changes";

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
    std::vector<std::wstring> added;
    for (const std::wstring& name : folders) {
        const std::wstring folder = tidyFolder(name);
        if (!folder.empty() && !folders_->has(folder)) {
            folders_->add(folder);
            added.push_back(folder);
        }
    }
    const std::wstring error = page_->show(added);
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
        page_->add(sid, chosen);
        rulesChanged();
    }
}

void PanelWindow::addForAccount()
{
    if (const AccountChoice account = chooseAccount(window_); account.made) {
        addFor(account.sid);
    }
}

void PanelWindow::addForOwner()
{
    if (const AccountChoice account = chooseAccountOwnersFirst(window_, folders_->selected()); account.made) {
        addFor(account.sid);
    }
}

void PanelWindow::edit()
{
    if (mayEdit_) {
        page_->edit();
        rulesChanged();
    }
}

/// Edit and Drop are there for those who may change rules, while a row is selected.
void PanelWindow::updateRuleButtons()
{
    if (mayEdit_) {
        checkForButtons(window_, IDC_RULES, IDC_EDIT, IDC_DROP, 0);
    }
}

void PanelWindow::drop()
{
    if (!mayEdit_) {
        return;
    }
    page_->drop();
    rulesChanged();
    updateRuleButtons();
    SetFocus(
        page_->list()); // the button that was pressed is disabled now, and a disabled window gets no keys
}

bool PanelWindow::apply()
{
    if (!modified_) {
        return true;
    }
    const std::wstring error = page_->store(folders_->all());
    if (!error.empty()) {
        reportStore(L"The rules were not stored.", error);
        return false;
    }
    status_->showError({});
    rulesChanged();
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
    updateRuleButtons();
    if (!error.empty()) {
        reportStore(L"Not all rules could be read.", error);
    }
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
    status_->showError(error);
    say(window_, MB_ICONERROR, L"Quota Store", whatFailed + L"\n\n" + error);
}

} // namespace host
