// Puts a function of the test in place of one that a module imports.
#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

/// The calls of one module to one imported function go to the replacement while this object lives. Calls of
/// other modules, and functions that the module looks up at run time, are not touched.
///
///     ImportPatch box(ImportPatch::corvane(), "MessageBoxA", &boxOfTheTest);
///     ASSERT_EQ(box.count(), 1);
class ImportPatch {
public:
    /// @param function     name of the imported function, of whichever module.
    /// @param replacement  function of the same type, without a capture.
    template <class Function>
    ImportPatch(HMODULE module, std::string_view function, Function* replacement)
        : ImportPatch(module, function, reinterpret_cast<ULONG_PTR>(replacement))
    {
    }
    ImportPatch(HMODULE module, std::string_view function, ULONG_PTR replacement);
    ~ImportPatch();
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    /// How many imports were replaced. 0: the module does not import such a function, so nothing is patched.
    int count() const { return static_cast<int>(m_slots.size()); }

    /// Leaves the replacement in place beyond this object: for a module that may be gone by then.
    void keep() { m_slots.clear(); }

    /// What the module called before, null when there is none.
    template <class Function>
    Function* original() const
    {
        return reinterpret_cast<Function*>(m_slots.empty() ? 0 : m_slots.front().before);
    }

    /// The library under test.
    static HMODULE corvane();

private:
    struct Slot {
        ULONG_PTR* where;
        ULONG_PTR before;
    };
    std::vector<Slot> m_slots;
};
