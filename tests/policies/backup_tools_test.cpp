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
        .entry(kToolEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), ""); })
        .enter(kToolEntry, L"C:\\Tools\\bk.exe")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("addToBackupTools bk.exe"));
            EXPECT_THAT(list.rows(), ElementsAre("bk.exe", "nt.exe"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
        })
        .add()
        .enter(kToolEntry, L"zz.exe") // a name without a backslash is kept whole, and finds its place
        .list([](HWND, const ListView& list) {
            EXPECT_THAT(list.rows(), ElementsAre("bk.exe", "nt.exe", "zz.exe"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0, 2));
        })
        .list([this](HWND dialog, const ListView&) {
            store.takeCalls();
            clickLater(dialog, IDOK);
        });
    EXPECT_EQ(visit.run(editBackupTools), 0);
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
        .entry(kToolEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "a.exe"); })
        .enter(kToolEntry, L"x\\bb.exe")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("getBackupTools 0", "updateBackupTools 0 bb.exe"));
            EXPECT_THAT(list.rows(), ElementsAre("b.exe", "bb.exe", "c.exe"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0, 2));
        })
        .press(IDCANCEL);
    visit.run(editBackupTools);
}

TEST_F(BackupToolsTest, AnEmptyNameIsAnEntry)
{
    visit.add()
        .press(IDOK)
        .list([](HWND, const ListView& list) { EXPECT_THAT(list.rows(), ElementsAre("")); })
        .add()
        .enter(kToolEntry, L"C:\\Tools\\")
        .press(IDOK);
    visit.run(editBackupTools);
    EXPECT_THAT(store.tools.present(), ElementsAre(L"", L""));
}

TEST_F(BackupToolsTest, DeletingARowLeavesTheOthersTheirIndexes)
{
    visit.add()
        .enter(kToolEntry, L"first.exe")
        .add()
        .enter(kToolEntry, L"second.exe")
        .remove(0)
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("removeBackupTools 0"));
            EXPECT_THAT(list.rows(), ElementsAre("second.exe"));
            EXPECT_THAT(list.allData(), ElementsAre(1));
        })
        .edit(0)
        .enter(kToolEntry, L"later.exe")
        .list([this](HWND, const ListView&) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("getBackupTools 1", "updateBackupTools 1 later.exe"));
        })
        .press(IDCANCEL);
    visit.run(editBackupTools);
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
    visit.list([&](HWND, const ListView& list) { EXPECT_EQ(list.allData(), expected); }).press(IDCANCEL);
    visit.run(editBackupTools);
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
        .press(IDCANCEL);
    EXPECT_EQ(visit.run(editBackupTools), 0);
}
