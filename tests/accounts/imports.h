// Functions in place of those that this program imports.
#pragma once

#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

/// The replacements of one test, together.
class Imports {
public:
    /// Fails the running test when the program does not import the function: then nothing was replaced.
    /// @return the function replaced.
    template <class Function>
    Function* replace(const char* function, Function* replacement)
    {
        m_patches.push_back(std::make_unique<ImportPatch>(GetModuleHandleW(nullptr), function, replacement));
        EXPECT_EQ(m_patches.back()->count(), 1) << function;
        return m_patches.back()->original<Function>();
    }

private:
    std::vector<std::unique_ptr<ImportPatch>> m_patches;
};
