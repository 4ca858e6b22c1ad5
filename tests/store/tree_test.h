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
        top_ = (root() / "tree").wstring();
        makeFolder(top_);
    }

    std::wstring in(const std::wstring& name) const { return top_ + L'\\' + name; }

    std::wstring top_;
};

} // namespace store_test
