// Manage exception files: the files and paths that quota accounting leaves out.
#include "corvane.h"
#include "files/select_file.h"
#include "policies/text_entry_dialog.h"
#include "policies/text_list.h"
#include "res/resource.h"
#include "store/lornix.h"

namespace {

/// One file or path, typed or picked.
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

struct Excludes {
    static wchar_t* ask(HWND owner, const wchar_t* current)
    {
        ExcludeEntry entry;
        entry.ask(owner, current);
        return entry.takeText().release();
    }

    static const wchar_t* get(std::uint32_t index) { return getExcludes(index); }
    static std::uint32_t add(const wchar_t* path) { return addToExcludes(path); }
    static void update(std::uint32_t index, const wchar_t* path) { updateExcludes(index, path); }
};

void storeAndApply()
{
    storeExcludes();
    applyExcludes();
    storeRulesFromDriver(L"excludes.cnf");
}

constexpr ListColumn kColumns[] = {{L"Excludes", LVCFMT_LEFT, 400}};

constexpr ListEditor kEditor{
    .templateId = IDD_EXCLUDES,
    .listId = IDC_POLICY_LIST,
    .site = crash_sites::kExcludes,
    .columns = kColumns,
    .load = [] { loadExcludes(); },
    .entry = Excludes::get,
    .render = nullptr,
    .add = TextList<Excludes>::add,
    .edit = TextList<Excludes>::edit,
    .remove = [](std::uint32_t index) { removeExcludes(index); },
    .store = storeAndApply,
    .free = [] { freeExcludes(); },
};

} // namespace

intptr_t editExcludes(HWND owner)
{
    return openListEditor(kEditor, owner);
}
