// Dialogs that cannot be shown.
#pragma once

#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

/// While this object lives, a module does not find the template of a dialog, or of any.
class HiddenDialog {
public:
    static constexpr int kAll = 0;

    explicit HiddenDialog(int number = kAll, HMODULE module = ImportPatch::corvane())
        : m_patch(module, "FindResourceW", &find)
    {
        EXPECT_EQ(m_patch.count(), 1);
        before = m_patch.original<HRSRC WINAPI(HMODULE, LPCWSTR, LPCWSTR)>();
        hidden = number;
    }

private:
    static HRSRC WINAPI find(HMODULE module, LPCWSTR name, LPCWSTR kind)
    {
        const bool isHidden = hidden == kAll || name == MAKEINTRESOURCEW(hidden);
        return isHidden ? nullptr : before(module, name, kind);
    }
    static inline HRSRC(WINAPI* before)(HMODULE, LPCWSTR, LPCWSTR) = nullptr;
    static inline int hidden = kAll;

    ImportPatch m_patch;
};
