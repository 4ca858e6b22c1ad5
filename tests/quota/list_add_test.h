// Adding rules to the quota list: what the tests of it have in common.
#pragma once

#include "tests/quota/rule_list_test.h"

struct ListAddTest : RuleListTest {
    void* const alice = store.account("alice");
    void* const bob = store.account("bob");

    void SetUp() override { prepare(); }
};
