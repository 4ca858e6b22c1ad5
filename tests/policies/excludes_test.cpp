// Manage exception files, and its entry dialog.
#include "corvane.h"
#include "tests/policies/editor_visit.h"
#include "tests/policies/file_dialogs.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

struct ExcludesTest : testing::Test {
    PolicyStore store;
    EditorVisit visit{store, editExcludes, "Exclude file"};
};

} // namespace

TEST_F(ExcludesTest, AddsOnTopAndStores)
{
    store.putExclude(L"C:\\old");
    visit.add()
        .shows("")
        .enter(L"C:\\new")
        .calls({"addToExcludes C:\\new"})
        .rows({"C:\\new", "C:\\old"})
        .data({1, 0})
        .ok();
    EXPECT_THAT(store.calls(), ElementsAre("storeExcludes", "applyExcludes",
                                           "storeRulesFromDriver excludes.cnf", "freeExcludes"));
    EXPECT_THAT(store.excludes.present(), ElementsAre(L"C:\\old", L"C:\\new"));
}

TEST_F(ExcludesTest, EditsInPlace)
{
    store.putExclude(L"C:\\a");
    store.putExclude(L"C:\\b");
    store.putExclude(L"C:\\c");
    visit.edit(1)
        .shows("C:\\b")
        .enter(L"D:\\b")
        .calls({"getExcludes 1", "updateExcludes 1 D:\\b"})
        .rows({"C:\\c", "D:\\b", "C:\\a"})
        .data({2, 1, 0})
        .cancel();
    EXPECT_THAT(store.calls(), ElementsAre("freeExcludes"));
}

TEST_F(ExcludesTest, ADoubleClickEdits)
{
    store.putExclude(L"C:\\a");
    visit
        .list([this](HWND, const ListView& list) {
            list.selectOnly({0});
            store.takeCalls();
            list.doubleClick();
        })
        .enter(L"C:\\b")
        .cancel();
    EXPECT_THAT(store.calls(), ElementsAre("getExcludes 0", "updateExcludes 0 C:\\b", "freeExcludes"));
}

TEST_F(ExcludesTest, ARealDoubleClickEdits)
{
    store.putExclude(L"C:\\a");
    visit
        .list([this](HWND, const ListView& list) {
            RECT cell{};
            ListView_GetItemRect(list.list(), 0, &cell, LVIR_LABEL);
            const LPARAM at = MAKELPARAM(cell.left + 5, (cell.top + cell.bottom) / 2);
            store.takeCalls();
            // The list waits for a drag until the button comes up: that must be on its way before.
            PostMessageW(list.list(), WM_LBUTTONUP, 0, at);
            SendMessageW(list.list(), WM_LBUTTONDOWN, MK_LBUTTON, at);
            PostMessageW(list.list(), WM_LBUTTONDBLCLK, MK_LBUTTON, at);
        })
        .enter(L"C:\\b")
        .cancel();
    EXPECT_THAT(store.calls(), ElementsAre("getExcludes 0", "updateExcludes 0 C:\\b", "freeExcludes"));
}

TEST_F(ExcludesTest, ACancelledEntryChangesNothing)
{
    store.putExclude(L"C:\\a");
    visit.leaveEntries().calls({"getExcludes 0"}).rows({"C:\\a"}).cancel();
}

TEST_F(ExcludesTest, AnEmptyTextIsAnEntry)
{
    visit.add()
        .press(IDOK)
        .list([this](HWND, const ListView& list) {
            EXPECT_EQ(list.rowCount(), 1);
            EXPECT_EQ(store.takeCalls().size(), 1u);
        })
        .ok();
    EXPECT_THAT(store.excludes.present(), ElementsAre(L""));
}

TEST_F(ExcludesTest, KeepsIndexesThroughRemovalsAndLaterEdits)
{
    store.putExclude(L"zero");
    visit.add()
        .enter(L"one")
        .add()
        .enter(L"two")
        .remove(1) // "one"
        .calls({"removeExcludes 1"})
        .rows({"two", "zero"})
        .data({2, 0})
        .edit(0)
        .enter(L"two again")
        .calls({"getExcludes 2", "updateExcludes 2 two again"})
        .ok();
    EXPECT_THAT(store.excludes.present(), ElementsAre(L"zero", L"two again"));
}

TEST_F(ExcludesTest, ARowWhoseEntryIsGoneOpensAnEmptyDialog)
{
    store.putExclude(L"C:\\a");
    store.answer.updateExcludes = [](uint32_t, const wchar_t*) {
    };
    visit.list([this](HWND, const ListView&) { store.excludes.remove(0); })
        .edit(0)
        .shows("")
        .press(IDCANCEL)
        .cancel();
}

TEST_F(ExcludesTest, CutsWhatIsTypedAt259Characters)
{
    const auto enterLength = [this](size_t length) {
        visit.add().enter(std::wstring(length, L'x'));
    };
    enterLength(259);
    enterLength(260);
    enterLength(10000);
    visit.ok();
    const std::wstring longest(259, L'x');
    EXPECT_THAT(store.excludes.present(), ElementsAre(longest, longest, longest));
}

TEST_F(ExcludesTest, AStoredTextIsShownWholeAndCutByOkAlone)
{
    const std::wstring stored = L"C:\\" + std::wstring(9997, L'y');
    store.putExclude(stored.c_str());
    visit.edit(0)
        .shows(utf8(stored))
        .press(IDCANCEL)
        .list([&](HWND, const ListView& list) { EXPECT_EQ(list.cell(0, 0), stored); })
        .edit(0)
        .press(IDOK)
        .ok();
    EXPECT_THAT(store.excludes.present(), ElementsAre(stored.substr(0, 259)));
}

TEST_F(ExcludesTest, BrowsesForAnyName)
{
    FileDialogs files;
    files.answer = L"C:\\pages\\not there yet.sys";
    visit.add()
        .entry([&](HWND entry) {
            type(entry, IDC_ENTRY_TEXT, L"before");
            click(entry, IDC_ENTRY_BROWSE);
            EXPECT_EQ(files.asked, "save, All files, Exclude file");
            EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\pages\\not there yet.sys");

            files.answer.clear();
            click(entry, IDC_ENTRY_BROWSE);
            EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\pages\\not there yet.sys");
        })
        .press(IDOK)
        .ok();
    EXPECT_THAT(store.excludes.present(), ElementsAre(L"C:\\pages\\not there yet.sys"));
}

TEST_F(ExcludesTest, AFaultWhileBrowsingLeavesTheEntryDialogOpen)
{
    const auto fault = [](OPENFILENAMEW*) -> BOOL {
        RaiseException(EXCEPTION_INT_OVERFLOW, 0, 0, nullptr);
        return TRUE;
    };
    FileDialogs files;
    const ImportPatch save(ImportPatch::corvane(), "GetSaveFileNameW",
                           static_cast<BOOL(WINAPI*)(OPENFILENAMEW*)>(fault));
    ASSERT_EQ(save.count(), 1);
    visit.add()
        .entry([](HWND entry) { click(entry, IDC_ENTRY_BROWSE); })
        .entry([this](HWND entry) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("ODS UI CRASH: eleDlg, MyDlgProc, 56\n"));
            EXPECT_TRUE(isEnabled(entry, IDOK));
        })
        .enter(L"C:\\typed")
        .ok();
    EXPECT_THAT(store.excludes.present(), ElementsAre(L"C:\\typed"));
}

TEST_F(ExcludesTest, AnEntryDialogThatCannotBeShownIsACancelledOne)
{
    const HiddenDialog entry(IDD_EXCLUDE_ENTRY);
    visit.add().rows({}).calls({}).cancel();
}
