// The tables of a loaded module: what it exports and what it imports.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct ImportedFunction {
    std::string module;
    std::string name; ///< empty: by number
    ULONG_PTR* slot = nullptr;
};

class PeImage {
public:
    explicit PeImage(HMODULE module)
        : m_base(reinterpret_cast<unsigned char*>(module))
    {
    }

    /// In the order of the table, which is that of the alphabet.
    std::vector<std::string> exportedNames() const;

    /// How many functions are exported, those without a name included.
    DWORD exportedFunctions() const;

    std::vector<ImportedFunction> imports() const;

private:
    const IMAGE_DATA_DIRECTORY& directory(int index) const;
    template <class T>
    T* at(ULONGLONG offset) const
    {
        return reinterpret_cast<T*>(m_base + offset);
    }
    unsigned char* m_base;
};
