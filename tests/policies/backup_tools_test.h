// Manage backup tools: what the tests of it have in common.
#pragma once

#include "corvane.h"
#include "res/resource.h"
#include "tests/policies/editor_visit.h"

#include <gtest/gtest.h>

inline constexpr char kToolEntry[] = "Backup Processes";

struct BackupToolsTest : testing::Test {
    PolicyStore store;
    EditorVisit visit{store, editBackupTools, kToolEntry};
};
