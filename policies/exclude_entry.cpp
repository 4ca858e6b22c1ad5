#include "policies/exclude_entry.h"

#include "files/select_file.h"
#include "policies/text_entry_dialog.h"
#include "res/resource.h"

namespace {

class ExcludeEntry : public TextEntryDialog {
public:
    ExcludeEntry()
        : TextEntryDialog(IDD_EXCLUDE_ENTRY, crash_sites::kExcludeEntry)
    {
    }

private:
    void onButton(int id) override
    {
        if (id != IDC_ENTRY_BROWSE) {
            return;
        }
        if (const wchar_t* path = selectFile(window(), select_file_mode::kAnyName)) {
            setText(path);
        }
    }
};

} // namespace

wchar_t* askExclude(HWND owner, const wchar_t* path)
{
    ExcludeEntry entry;
    entry.ask(owner, path);
    return entry.takeText().release();
}
