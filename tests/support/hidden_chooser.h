// An account chooser that cannot be shown.
#pragma once

#include "res/resource.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

/// While this object lives, the library does not find the chooser's template. All other dialogs show.
class HiddenChooser {
public:
    HiddenChooser()
        : m_patch(ImportPatch::corvane(), "FindResourceW", &find)
    {
        EXPECT_EQ(m_patch.count(), 1);
        before = m_patch.original<HRSRC WINAPI(HMODULE, LPCWSTR, LPCWSTR)>();
    }

private:
    static HRSRC WINAPI find(HMODULE module, LPCWSTR name, LPCWSTR kind)
    {
        return name == MAKEINTRESOURCEW(IDD_CHOOSER) ? nullptr : before(module, name, kind);
    }
    static inline HRSRC(WINAPI* before)(HMODULE, LPCWSTR, LPCWSTR) = nullptr;

    ImportPatch m_patch;
};
