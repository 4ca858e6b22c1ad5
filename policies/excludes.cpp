// Manage exception files: the files and paths that quota accounting leaves out.
#include "corvane.h"
#include "policies/exclude_entry.h"
#include "policies/text_list.h"
#include "res/resource.h"
#include "store/lornix.h"

namespace {

struct Excludes {
    static wchar_t* ask(HWND owner, const wchar_t* current) { return askExclude(owner, current); }
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
