#include "host/library_dialogs.h"

#include "host/message.h"
#include "host/resource.h"

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

/// Says what a chooser gave, which is all that this panel does with it.
void sayChosen(HWND owner, const wchar_t* caption, wchar_t* chosen)
{
    const std::unique_ptr<wchar_t, decltype(&std::free)> text(chosen, std::free);
    if (text != nullptr) {
        say(owner, MB_ICONINFORMATION, caption, *text == L'\0' ? L"Nothing is selected." : text.get());
    }
}

/// Tells that a dialog could not be shown at all.
bool shown(HWND owner, intptr_t result)
{
    if (result == -1) {
        say(owner, MB_ICONERROR, L"Quota Control Panel",
            L"The dialog cannot be shown. Is the library loaded under the name corvane.dll?");
    }
    return true;
}

} // namespace

bool openLibraryDialog(HWND owner, int menuEntry)
{
    for (const Editor& editor : kEditors) {
        if (editor.menuEntry == menuEntry) {
            return shown(owner, editor.open(owner));
        }
    }
    switch (menuEntry) {
    case IDM_CHOOSE_FILE:
        sayChosen(owner, L"Chosen File", chooseFileImpl(owner, 0));
        return true;
    case IDM_CHOOSE_PROCESS: {
        wchar_t* chosen = chooseProcess(owner);
        const auto code = reinterpret_cast<intptr_t>(chosen);
        if (shown(owner, code) && code != -1) {
            sayChosen(owner, L"Chosen Process", chosen);
        }
        return true;
    }
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
