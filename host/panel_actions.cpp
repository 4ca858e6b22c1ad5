// What the panel does when it is told to; how it comes to be told stands in panel.cpp.
#include "host/known_folders.h"
#include "host/library_dialogs.h"
#include "host/panel.h"
#include "host/resource.h"
#include "host/store_errors.h"
#include "host/window/first_lines.h"
#include "host/window/message.h"

#include "corvane.h"

namespace host {
namespace {

constexpr wchar_t kCaption[] = L"Quota Control Panel";
constexpr wchar_t kUnsaved[] = L"Unsaved Changes";
constexpr wchar_t kNotAllDone[] = L"Not everything could be read or stored.";
constexpr wchar_t kNotAllRead[] = L"Not all rules could be read.";

} // namespace

template <class Call>
void Panel::withStore(const wchar_t* whatFailed, Call&& call)
{
    if (const std::wstring error = storeErrorsOf(call); !error.empty()) {
        reportStore(whatFailed, error);
    }
}

bool Panel::open(HINSTANCE instance, const std::vector<std::wstring>& folders)
{
    if (!create(instance)) {
        return false;
    }
    show();
    std::vector<std::wstring> known;
    const std::wstring error = storeErrorsOf([&] { known = knownFolders(); });
    if (!error.empty()) { // the rules of the folders do not tell the same again
        reportStore(known.empty() ? L"The folders with rules could not all be read." : kNotAllRead, error);
    }
    showFolders(known);
    for (const std::wstring& folder : folders) {
        // One asked for at every start is known to the store by and by.
        if (m_folders->shown().has(folder)) {
            m_folders->selectOnly(folder);
            selectionChanged();
        } else {
            addFolder(folder);
        }
    }
    return true;
}

void Panel::addFolder(const std::wstring& name)
{
    const std::wstring folder = m_folders->accepted(name);
    if (!folder.empty()) {
        showFolders({folder});
        m_folders->selectOnly(folder); // the next thing to do is to add a rule for it
        selectionChanged();
    }
}

void Panel::showFolders(const std::vector<std::wstring>& folders)
{
    withStore(kNotAllRead, [&] {
        m_page->show(m_folders->add(folders));
        rulesChanged();
        selectionChanged();
    });
}

void Panel::removeFolders()
{
    const std::vector<std::wstring> chosen = m_folders->shown().selected();
    if (m_page->isModified(chosen) && ask(window(), MB_YESNO | MB_DEFBUTTON2, kUnsaved,
                                          L"Rules of these folders have unsaved changes, which would be "
                                          L"lost.\n\nRemove the folders from view?") != IDYES)
    {
        return;
    }
    m_page->hide(chosen);
    m_folders->remove(chosen);
    rulesChanged();
    selectionChanged();
}

void Panel::addFor(void* sid)
{
    const std::vector<std::wstring> chosen = m_folders->shown().selected();
    if (m_mayEdit && !chosen.empty()) {
        withStore(kNotAllDone, [&] {
            m_page->add(sid, chosen);
            rulesChanged();
        });
    }
}

template <class Chooser>
void Panel::addForChosen(Chooser&& choose)
{
    AccountChoice account{};
    withStore(kNotAllDone, [&] { account = choose(); });
    if (account.made) {
        addFor(account.sid);
    }
}

void Panel::addForAccount()
{
    addForChosen([this] { return chooseAccount(window()); });
}

void Panel::addForOwner()
{
    addForChosen([this] { return chooseAccountOwnersFirst(window(), m_folders->shown().selected()); });
}

bool Panel::ownersFirst() const
{
    return getButtonState(window(), IDC_OWNERS_FIRST) == BST_CHECKED;
}

/// The box does not check itself: a click that the panel refuses, over a cell that holds no limit, is to change nothing.
void Panel::turnOwnersFirst()
{
    setButtonState(window(), IDC_OWNERS_FIRST, ownersFirst() ? BST_UNCHECKED : BST_CHECKED);
}

void Panel::edit()
{
    if (m_mayEdit) {
        withStore(kNotAllDone, [&] {
            m_page->edit();
            rulesChanged();
        });
    }
}

void Panel::editRow(int row)
{
    if (m_mayEdit) {
        withStore(kNotAllDone, [&] {
            m_page->editRow(row);
            rulesChanged();
        });
    }
}

/// Edit and Drop are there for those who may change rules, while a row is selected.
void Panel::updateRuleButtons()
{
    if (!m_mayEdit) {
        return;
    }
    for (const int id : {IDC_EDIT, IDC_DROP}) {
        if (GetFocus() == control(id) && m_page->selectedRow() < 0) {
            SetFocus(m_page->list()); // a disabled window gets no keys
        }
    }
    m_page->enableForSelection(IDC_EDIT, IDC_DROP);
}

void Panel::drop()
{
    if (m_mayEdit) {
        m_page->drop();
        rulesChanged();
    }
}

void Panel::openDialogOf(int menuEntry)
{
    withStore(kNotAllDone, [&] { openLibraryDialog(window(), menuEntry); });
}

bool Panel::apply()
{
    if (!m_modified) {
        return true;
    }
    bool done = false;
    const std::wstring problems = storeErrorsOf([&] { done = m_page->store(m_folders->shown().all()); });
    if (!done) {
        reportStore(L"The rules were not stored.", problems);
        return false;
    }
    status().showError({});
    rulesChanged();
    if (!problems.empty()) {
        reportStore(L"The rules are stored. There is more to know:", problems);
    }
    return true;
}

void Panel::reload()
{
    if (m_modified &&
        ask(window(), MB_YESNO | MB_DEFBUTTON2, kUnsaved,
            L"Reading the stored rules again drops all unsaved changes.\n\nReload all the same?") != IDYES)
    {
        return;
    }
    withStore(kNotAllRead, [&] {
        m_page->clear();
        m_page->show(m_folders->shown().all());
        status().showError({});
        rulesChanged();
    });
}

bool Panel::mayClose()
{
    if (!finishCell()) {
        return false;
    }
    if (!m_modified) {
        return true;
    }
    switch (ask(window(), MB_YESNOCANCEL, kUnsaved,
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

void Panel::openCell(int row)
{
    if (!m_mayEdit) {
        return;
    }
    m_cell->open(row);
    if (m_cell->isOpen()) {
        enable(IDC_APPLY, true); // it would take what is being typed
    }
}

bool Panel::finishCell()
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

void Panel::rulesChanged()
{
    updateRuleButtons();
    m_modified = m_page->isModified();
    SetWindowTextW(window(),
                   m_modified ? (std::wstring(kCaption) + L" - unsaved changes").c_str() : kCaption);
    enable(IDC_APPLY, m_modified);
    status().showRules(m_page->count(), m_folders->shown().all().size());
    status().showModified(m_modified);
}

void Panel::selectionChanged()
{
    const std::vector<std::wstring> chosen = m_folders->shown().selected();
    enable(IDC_FOLDER_REMOVE, !chosen.empty());
    enable(IDC_ADD_FOR_ACCOUNT, m_mayEdit && !chosen.empty());
    enable(IDC_OWNERS_FIRST, m_mayEdit && !chosen.empty());
    enable(IDC_ADD_FOR_ANYONE, m_mayEdit && !chosen.empty());
    m_folders->showHint(m_mayEdit);
}

void Panel::reportStore(const std::wstring& whatFailed, const std::wstring& error)
{
    constexpr size_t kMostLines = 12;
    status().showError(error);
    say(window(), MB_ICONERROR, L"Quota Store", whatFailed + L"\n\n" + firstLines(error, kMostLines));
}

} // namespace host
