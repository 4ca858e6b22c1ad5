// Filling the quota list: what the tests of it have in common.
#pragma once

#include "tests/support/list_host.h"
#include "tests/support/paths.h"
#include "tests/support/recording_store.h"

#include <gtest/gtest.h>

struct ListFillTest : testing::Test {
    RecordingStore store;
    ListHost host;
    void* const alice = store.account("SALES\\alice");
    void* const bob = store.account("SALES\\bob");

    void SetUp() override { initializeListCtrl2(host.object(), nullptr); }

    /// The percent text of a rule.
    std::string percentOf(int64_t inUse, int64_t hardLimit)
    {
        initializeListCtrl2(host.object(), nullptr);
        store.answer.getQuotaList = [=](const wchar_t* folder) {
            return RecordingStore::makeRule(folder, nullptr, hardLimit, 1, inUse);
        };
        fillUpListCtrl2(Paths{L"C:\\data"}, host.object());
        return host.column(4).at(0);
    }
};
