// Another program that holds all files, so that nobody can open any.
#pragma once

#include "store_test.h"

#include "tests/support/import_patch.h"

namespace store_test {

class HeldFiles {
public:
    HeldFiles()
        : m_patch(storeModule(), "CreateFileW", &refuse)
    {
        EXPECT_EQ(m_patch.count(), 1);
    }

private:
    static HANDLE WINAPI refuse(const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE)
    {
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }

    ImportPatch m_patch;
};

} // namespace store_test
