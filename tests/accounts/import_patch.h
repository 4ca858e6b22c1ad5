// Puts functions in place of those that this program imports.
#pragma once

#include "frame/platform.h"

#include <vector>

/// Replaces imports of the program until it goes out of scope.
class ImportPatch {
public:
    ImportPatch() = default;
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch();

    /// Fails the running test when the program does not import the function: then nothing was replaced.
    /// @return the function replaced.
    template <class F>
    F* replace(const char* library, const char* function, F* replacement)
    {
        return reinterpret_cast<F*>(replaceAddress(library, function, reinterpret_cast<void*>(replacement)));
    }

private:
    struct Slot {
        void** address;
        void* original;
    };
    void* replaceAddress(const char* library, const char* function, void* replacement);

    std::vector<Slot> m_slots;
};
