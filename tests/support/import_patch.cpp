#include "tests/support/import_patch.h"

#include "tests/support/pe_image.h"

namespace {

// The table stands among read-only data.
void write(ULONG_PTR* where, ULONG_PTR value)
{
    DWORD before = 0;
    VirtualProtect(where, sizeof *where, PAGE_READWRITE, &before);
    *where = value;
    VirtualProtect(where, sizeof *where, before, &before);
}

} // namespace

ImportPatch::ImportPatch(HMODULE module, std::string_view function, ULONG_PTR replacement)
{
    for (const ImportedFunction& import : PeImage(module).imports()) {
        if (import.name == function) {
            m_slots.push_back({import.slot, *import.slot});
            write(import.slot, replacement);
        }
    }
}

ImportPatch::~ImportPatch()
{
    for (const Slot& slot : m_slots) {
        write(slot.where, slot.before);
    }
}

HMODULE ImportPatch::corvane()
{
    return GetModuleHandleW(L"corvane");
}
