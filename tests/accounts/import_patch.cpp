#include "import_patch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

BYTE* const kProgram = reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));

template <class T>
T* at(std::uint32_t offset)
{
    return reinterpret_cast<T*>(kProgram + offset);
}

void write(void** slot, void* value)
{
    DWORD before = 0;
    VirtualProtect(slot, sizeof(void*), PAGE_READWRITE, &before);
    *slot = value;
    VirtualProtect(slot, sizeof(void*), before, &before);
}

void** findSlot(const char* library, const char* function)
{
    const auto* const head = at<IMAGE_NT_HEADERS64>(
        static_cast<std::uint32_t>(reinterpret_cast<const IMAGE_DOS_HEADER*>(kProgram)->e_lfanew));
    const IMAGE_DATA_DIRECTORY& imports = head->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* entry = at<IMAGE_IMPORT_DESCRIPTOR>(imports.VirtualAddress); entry->Name != 0; ++entry) {
        if (_stricmp(at<char>(entry->Name), library) != 0) {
            continue;
        }
        const auto* name = at<IMAGE_THUNK_DATA64>(entry->OriginalFirstThunk);
        auto* slot = at<void*>(entry->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (!IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal) &&
                std::strcmp(
                    at<IMAGE_IMPORT_BY_NAME>(static_cast<std::uint32_t>(name->u1.AddressOfData))->Name,
                    function) == 0)
            {
                return slot;
            }
        }
    }
    return nullptr;
}

} // namespace

void* ImportPatch::replaceAddress(const char* library, const char* function, void* replacement)
{
    void** const slot = findSlot(library, function);
    if (slot == nullptr) {
        ADD_FAILURE() << function << " is not imported from " << library;
        return nullptr;
    }
    m_slots.push_back({slot, *slot});
    write(slot, replacement);
    return m_slots.back().original;
}

ImportPatch::~ImportPatch()
{
    for (auto slot = m_slots.rbegin(); slot != m_slots.rend(); ++slot) {
        write(slot->address, slot->original);
    }
}
