// Manage backup tools: the programs whose activity is not charged to quotas.
#include "corvane.h"
#include "policies/backup_tool_entry.h"
#include "policies/text_list.h"
#include "res/resource.h"
#include "store/lornix.h"

namespace {

struct BackupTools {
    static wchar_t* ask(HWND owner, const wchar_t* current) { return askBackupTool(owner, current); }
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
