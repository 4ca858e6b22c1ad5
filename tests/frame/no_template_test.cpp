// A platform that faults on a missing dialog template, as the documentation allows it to.
#include "corvane.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/recording_store.h"

#include <gmock/gmock.h>

namespace {

INT_PTR WINAPI readTemplate(HINSTANCE, LPCDLGTEMPLATEW dialogTemplate, HWND, DLGPROC, LPARAM)
{
    return static_cast<INT_PTR>(dialogTemplate->cdit) + 1;
}

struct NoTemplateTest : testing::Test {
    void SetUp() override { ASSERT_EQ(open.count(), 1); }

    RecordingStore store;
    const ImportPatch open{ImportPatch::corvane(), "DialogBoxIndirectParamW", readTemplate};
    const HiddenDialog all;
};

} // namespace

TEST_F(NoTemplateTest, EveryDialogJustCannotBeShown)
{
    QuotaRule* const rule = RecordingStore::makeRule(L"C:\\data", nullptr, 1, 1, 1);
    EXPECT_EQ(editQuotaListEntry(nullptr, rule, 1), -1);
    EXPECT_EQ(editQuotaListEntry(nullptr, rule, 0), -1);
    for (const auto editor :
         {editNotifications, editExcludes, editExcludeExts, editMgrAccounts, editBackupTools})
    {
        EXPECT_EQ(editor(nullptr), -1);
    }
    EXPECT_EQ(editBackupToolListEntry(nullptr, nullptr), -1);
    EXPECT_EQ(reinterpret_cast<intptr_t>(chooseProcess(nullptr)), -1);
    EXPECT_EQ(chooseFileImpl(nullptr, 0), nullptr);
    EXPECT_EQ(chooseSidFromUserInput(nullptr), nullptr);
    showAboutDialog(nullptr);
    EXPECT_THAT(store.lines(), testing::Each(testing::HasSubstr("got R1="))) << "no crash is told";
}
