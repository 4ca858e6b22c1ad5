#include "tests/support/pe_image.h"

const IMAGE_DATA_DIRECTORY& PeImage::directory(int index) const
{
    const auto* const dos = at<IMAGE_DOS_HEADER>(0);
    const auto* const headers = at<IMAGE_NT_HEADERS64>(static_cast<ULONGLONG>(dos->e_lfanew));
    return headers->OptionalHeader.DataDirectory[index];
}

std::vector<std::string> PeImage::exportedNames() const
{
    std::vector<std::string> names;
    const auto& entry = directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    if (entry.Size == 0) {
        return names;
    }
    const auto* const table = at<IMAGE_EXPORT_DIRECTORY>(entry.VirtualAddress);
    const auto* const offsets = at<DWORD>(table->AddressOfNames);
    for (DWORD i = 0; i < table->NumberOfNames; ++i) {
        names.emplace_back(at<char>(offsets[i]));
    }
    return names;
}

DWORD PeImage::exportedFunctions() const
{
    const auto& entry = directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    return entry.Size == 0 ? 0 : at<IMAGE_EXPORT_DIRECTORY>(entry.VirtualAddress)->NumberOfFunctions;
}

std::vector<ImportedFunction> PeImage::imports() const
{
    std::vector<ImportedFunction> found;
    const auto& entry = directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (entry.Size == 0) {
        return found;
    }
    for (const auto* module = at<IMAGE_IMPORT_DESCRIPTOR>(entry.VirtualAddress); module->Name != 0; ++module)
    {
        const auto* name = at<IMAGE_THUNK_DATA64>(module->OriginalFirstThunk);
        auto* slot = at<IMAGE_THUNK_DATA64>(module->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            ImportedFunction function;
            function.module = at<char>(module->Name);
            if (!IMAGE_SNAP_BY_ORDINAL64(name->u1.Ordinal)) {
                function.name =
                    reinterpret_cast<const char*>(at<IMAGE_IMPORT_BY_NAME>(name->u1.AddressOfData)->Name);
            }
            function.slot = reinterpret_cast<ULONG_PTR*>(&slot->u1.Function);
            found.push_back(std::move(function));
        }
    }
    return found;
}
