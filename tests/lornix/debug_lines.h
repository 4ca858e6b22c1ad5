// The debug lines of the store, caught on their way to the debugger.
#pragma once

#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace store_test {

class DebugLines {
public:
    DebugLines()
        : m_patch(GetModuleHandleW(L"lornix.dll"), "OutputDebugStringA", &catchLine)
    {
        EXPECT_EQ(m_patch.count(), 1);
        lines().clear();
    }

    /// How many of the lines hold a part.
    int with(const std::string& part) const
    {
        int count = 0;
        for (const std::string& line : lines()) {
            count += line.find(part) == std::string::npos ? 0 : 1;
        }
        return count;
    }

    static std::vector<std::string>& lines()
    {
        static std::vector<std::string> caught;
        return caught;
    }

private:
    static void WINAPI catchLine(const char* line) { lines().push_back(line); }
    ImportPatch m_patch;
};

} // namespace store_test
