// Manage backup tools: the programs whose activity is not charged to quotas.
#include "corvane.h"
#include "files/select_file.h"
#include "frame/low_memory.h"
#include "policies/path_tail.h"
#include "policies/text_entry_dialog.h"
#include "policies/text_list.h"
#include "res/resource.h"
#include "store/lornix.h"
#include "store/owned.h"

#include <cstring>
#include <cwchar>

namespace {

/// One program by its image name, typed or picked.
class BackupToolEntry : public TextEntryDialog {
public:
    BackupToolEntry()
        : TextEntryDialog(IDD_BACKUP_TOOL_ENTRY, crash_sites::kBackupToolEntry)
    {
    }

private:
    void onButton(int id) override
    {
        if (id == IDC_ENTRY_BROWSE_RUNNING) {
            const wchar_t* name = chooseProcess(window());
            if (name != nullptr && reinterpret_cast<INT_PTR>(name) != -1) {
                // QUIRK: not released, once per choice. BackupToolEntryTest.TheNameOfAChosenProcessIsNotReleased
                setText(pathTail(name));
            }
        } else if (id == IDC_ENTRY_BROWSE) {
            if (const wchar_t* path = selectFile(window(), select_file_mode::kAnyName)) {
                setText(pathTail(path));
            }
        }
    }

    const wchar_t* taken(const wchar_t* typed) const override { return pathTail(typed); }
};

// The host reads the address from the low 32 bits alone.
// @return the text itself where it lies low enough, otherwise a copy that does, and null when there is no room.
wchar_t* withLowAddress(CBlock<wchar_t> text)
{
    if (isBelowFourGiB(text.get())) {
        return text.release();
    }
    const std::size_t size = (std::wcslen(text.get()) + 1) * sizeof(wchar_t);
    LowBlock copy = allocateBelowFourGiB(size);
    if (copy) {
        std::memcpy(copy.get(), text.get(), size);
    }
    return static_cast<wchar_t*>(copy.release());
}

struct BackupTools {
    static wchar_t* ask(HWND owner, const wchar_t* current)
    {
        BackupToolEntry entry;
        entry.ask(owner, current);
        return entry.takeText().release();
    }

    static const wchar_t* get(std::uint32_t index) { return getBackupTools(index); }
    static std::uint32_t add(const wchar_t* name) { return addToBackupTools(name); }
    static void update(std::uint32_t index, const wchar_t* name) { updateBackupTools(index, name); }
};

void storeAndApply()
{
    storeBackupTools();
    applyBackupTools();
    storeRulesFromDriver(L"excludes.cnf");
}

constexpr ListColumn kColumns[] = {{L"Backup Tools", LVCFMT_LEFT, 400}};

constexpr ListEditor kEditor{
    .templateId = IDD_BACKUP_TOOLS,
    .listId = IDC_POLICY_LIST,
    .site = crash_sites::kBackupTools,
    .columns = kColumns,
    .load = [] { loadBackupTools(); },
    .entry = BackupTools::get,
    .render = nullptr,
    .add = TextList<BackupTools>::add,
    .edit = TextList<BackupTools>::edit,
    .remove = [](std::uint32_t index) { removeBackupTools(index); },
    .store = storeAndApply,
    .free = [] { freeBackupTools(); },
};

} // namespace

intptr_t editBackupTools(HWND owner)
{
    return openListEditor(kEditor, owner);
}

intptr_t editBackupToolListEntry(HWND owner, const wchar_t* name)
{
    BackupToolEntry entry;
    return entry.ask(owner, name) ? reinterpret_cast<intptr_t>(withLowAddress(entry.takeText()))
                                  : entry.endCode();
}
