// Manage backup tools.
#include "tests/policies/backup_tools_test.h"

#include "tests/policies/file_dialogs.h"
#include "tests/support/import_patch.h"
#include "tests/support/low_string.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(BackupToolsTest, AddsTheLastComponentAndStores)
{
    store.putTool(L"nt.exe");
    visit.add()
        .shows("")
        .enter(L"C:\\Tools\\bk.exe")
        .calls({"addToBackupTools bk.exe"})
        .rows({"bk.exe", "nt.exe"})
        .data({1, 0})
        .add()
        .enter(L"zz.exe") // a name without a backslash is kept whole, and finds its place
        .rows({"bk.exe", "nt.exe", "zz.exe"})
        .data({1, 0, 2})
        .forget()
        .ok();
    EXPECT_THAT(store.calls(), ElementsAre("storeBackupTools", "applyBackupTools",
                                           "storeRulesFromDriver excludes.cnf", "freeBackupTools"));
    EXPECT_THAT(store.tools.present(), ElementsAre(L"nt.exe", L"bk.exe", L"zz.exe"));
}

TEST_F(BackupToolsTest, AnEditedRowMovesToItsPlaceWithItsIndex)
{
    for (const wchar_t* tool : {L"a.exe", L"b.exe", L"c.exe"}) {
        store.putTool(tool);
    }
    visit.edit(0)
        .shows("a.exe")
        .enter(L"x\\bb.exe")
        .calls({"getBackupTools 0", "updateBackupTools 0 bb.exe"})
        .rows({"b.exe", "bb.exe", "c.exe"})
        .data({1, 0, 2})
        .cancel();
}

TEST_F(BackupToolsTest, AnEmptyNameIsAnEntry)
{
    visit.add().press(IDOK).rows({""}).add().enter(L"C:\\Tools\\").ok();
    EXPECT_THAT(store.tools.present(), ElementsAre(L"", L""));
}

TEST_F(BackupToolsTest, DeletingARowLeavesTheOthersTheirIndexes)
{
    visit.add()
        .enter(L"first.exe")
        .add()
        .enter(L"second.exe")
        .remove(0)
        .calls({"removeBackupTools 0"})
        .rows({"second.exe"})
        .data({1})
        .edit(0)
        .enter(L"later.exe")
        .calls({"getBackupTools 1", "updateBackupTools 1 later.exe"})
        .cancel();
}

TEST_F(BackupToolsTest, RowsOfTheSameTextStandAsTheListPutsThem)
{
    // What the control itself makes of rows inserted one after the other.
    const std::vector<const wchar_t*> texts = {L"b", L"a", L"B", L"a", L"A", L"\x00e4", L"b-c", L"bc", L"B"};
    const HWND plain = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_POPUP | LVS_REPORT | LVS_SORTASCENDING, 0, 0,
                                       100, 100, nullptr, nullptr, nullptr, nullptr);
    for (size_t i = 0; i < texts.size(); ++i) {
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.pszText = const_cast<wchar_t*>(texts[i]);
        item.lParam = static_cast<LPARAM>(i);
        SendMessageW(plain, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        store.putTool(texts[i]);
    }
    const std::vector<LPARAM> expected = ListView(plain).allData();
    DestroyWindow(plain);
    visit.list([&](HWND, const ListView& list) { EXPECT_EQ(list.allData(), expected); }).cancel();
}

TEST_F(BackupToolsTest, AFaultHalfwayShowsWhatWasReadBefore)
{
    for (const wchar_t* tool : {L"b.exe", L"a.exe", L"c.exe"}) {
        store.putTool(tool);
    }
    store.raise("getBackupTools", Fault::kAccessViolation, 3);
    visit
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(list.rows(), ElementsAre("a.exe", "b.exe"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
            EXPECT_THAT(store.lines(), ElementsAre("UI CRASH: excpDlg, MyDlgProc, 178\n"));
        })
        .cancel();
}
