// The tree of drives and files on drives that the test makes up.
#pragma once

#include "tests/files/fake_disk.h"
#include "tests/files/tree_host.h"

#include <gtest/gtest.h>

struct DirTreeTest : testing::Test {
    FakeDisk disk{GetModuleHandleW(nullptr)};
    TreeHost host;
    CDirTreeCtrl& tree = host.tree();

    void openDrive(const std::wstring& name) { host.click(host.top(name)); }
};
