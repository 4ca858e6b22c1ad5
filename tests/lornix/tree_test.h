// What tests of sizes stand on: a folder tree of their own.
#pragma once

#include "store_test.h"
#include "tree.h"

namespace store_test {

/// A test with an empty folder to make trees in.
class TreeTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        m_top = (root() / "tree").wstring();
        makeFolder(m_top);
    }

    std::wstring in(const std::wstring& name) const { return m_top + L'\\' + name; }

    std::wstring m_top;
};

} // namespace store_test
