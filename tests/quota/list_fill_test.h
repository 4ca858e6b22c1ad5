// Filling the quota list: what the tests of it have in common.
#pragma once

#include "tests/quota/rule_list_test.h"

struct ListFillTest : RuleListTest {
    void* const alice = store.account("SALES\\alice");
    void* const bob = store.account("SALES\\bob");

    void SetUp() override { prepare(); }

    /// The percent text of a rule.
    std::string percentOf(int64_t inUse, int64_t hardLimit)
    {
        prepare();
        store.answer.getQuotaList = [=](const wchar_t* folder) {
            return RecordingStore::makeRule(folder, nullptr, hardLimit, 1, inUse);
        };
        fill({L"C:\\data"});
        return host.column(4).at(0);
    }
};
