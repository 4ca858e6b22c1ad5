#include "host/library_dialogs.h"

#include "host/resource.h"
#include "host/window/message.h"

#include "corvane.h"

#include <cstdlib>
#include <memory>

namespace host {
namespace {

/// The editors load their list, and store and apply it on OK, by themselves.
struct Editor {
    int menuEntry;
    intptr_t (*open)(HWND owner);
};
const Editor kEditors[] = {{IDM_NOTIFICATIONS, editNotifications},
                           {IDM_EXCLUDES, editExcludes},
                           {IDM_EXCLUDE_EXTS, editExcludeExts},
                           {IDM_MGR_ACCOUNTS, editMgrAccounts},
                           {IDM_BACKUP_TOOLS, editBackupTools}};

/// A text that the library gave. Most are blocks of the shared C runtime; one whose address had to be below 4 GiB
/// may be a region of its own, which only the start of its region tells.
struct ReleaseText {
    void operator()(wchar_t* text) const
    {
        MEMORY_BASIC_INFORMATION region{};
        if (VirtualQuery(text, &region, sizeof region) != 0 && region.AllocationBase == text) {
            VirtualFree(text, 0, MEM_RELEASE);
        } else {
            std::free(text);
        }
    }
};
using LibraryText = std::unique_ptr<wchar_t, ReleaseText>;

/// Says what a chooser gave, which is all that this panel does with it.
void sayChosen(HWND owner, const wchar_t* caption, const LibraryText& chosen)
{
    if (chosen != nullptr) {
        say(owner, MB_ICONINFORMATION, caption, *chosen == L'\0' ? L"Nothing was chosen." : chosen.get());
    }
}

/// Tells that a dialog could not be shown at all. @return whether it was shown.
bool shown(HWND owner, intptr_t result)
{
    if (result == -1) {
        say(owner, MB_ICONERROR, L"Quota Control Panel",
            L"The dialog cannot be shown. Is the library loaded under the name corvane.dll?");
    }
    return result != -1;
}

/// The same for a dialog whose result is a text, or null.
LibraryText shownText(HWND owner, intptr_t result)
{
    return LibraryText(shown(owner, result) ? reinterpret_cast<wchar_t*>(result) : nullptr);
}

} // namespace

bool openLibraryDialog(HWND owner, int menuEntry)
{
    for (const Editor& editor : kEditors) {
        if (editor.menuEntry == menuEntry) {
            shown(owner, editor.open(owner));
            return true;
        }
    }
    switch (menuEntry) {
    case IDM_CHOOSE_FILE:
        sayChosen(owner, L"Chosen File", LibraryText(chooseFileImpl(owner, 0)));
        return true;
    case IDM_CHOOSE_PROCESS:
        sayChosen(owner, L"Chosen Process",
                  shownText(owner, reinterpret_cast<intptr_t>(chooseProcess(owner))));
        return true;
    case IDM_BACKUP_PROCESS:
        sayChosen(owner, L"Chosen Process", shownText(owner, editBackupToolListEntry(owner, nullptr)));
        return true;
    case IDM_HELP_CONTENTS:
        showHelp(owner);
        return true;
    case IDM_ABOUT:
        showAboutDialog(owner);
        return true;
    default:
        return false;
    }
}

} // namespace host
