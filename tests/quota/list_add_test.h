// Adding rules to the quota list: what the tests of it have in common.
#pragma once

#include "tests/quota/quota_settings.h"
#include "tests/support/list_host.h"
#include "tests/support/paths.h"

#include <gtest/gtest.h>

struct ListAddTest : testing::Test {
    RecordingStore store;
    ListHost host;
    void* const alice = store.account("alice");
    void* const bob = store.account("bob");

    void SetUp() override { initializeListCtrl2(host.object(), nullptr); }

    unsigned char add(DialogScript& script, void* sid, const PathList* paths)
    {
        return script.run([=, this] { return addToListCtrl2(host.object(), sid, paths); });
    }

    /// Adds and accepts each dialog as it comes.
    unsigned char addWithOk(void* sid, const PathList* paths, int dialogs)
    {
        DialogScript script;
        for (int i = 0; i < dialogs; ++i) {
            script.onDialog("OK " + std::to_string(i), quota_settings::pressOk);
        }
        return add(script, sid, paths);
    }

    QuotaRule* chain() { return getDataModified2(host.object()); }
};
