#include "policies/exclude_entry.h"

#include "files/select_file.h"
#include "policies/text_entry_dialog.h"
#include "res/resource.h"

namespace {

void onCommand(HWND dialog, int id)
{
    if (id != IDC_ENTRY_BROWSE) {
        return;
    }
    if (const wchar_t* path = selectFile(dialog, select_file_mode::kAnyName)) {
        SetDlgItemTextW(dialog, IDC_ENTRY_TEXT, path);
    }
}

constexpr TextEntryDialog kDialog{IDD_EXCLUDE_ENTRY, crash_sites::kExcludeEntry, nullptr, onCommand, nullptr};

} // namespace

wchar_t* askExclude(HWND owner, const wchar_t* path)
{
    return enteredText(openTextEntry(kDialog, owner, path));
}
