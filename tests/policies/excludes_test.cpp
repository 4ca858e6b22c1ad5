// Manage exception files, and its entry dialog.
#include "corvane.h"
#include "tests/policies/editor_visit.h"
#include "tests/policies/file_dialogs.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kFileEntry[] = "Exclude file";

struct ExcludesTest : testing::Test {
    PolicyStore store;
    EditorVisit visit{store};
};

} // namespace

TEST_F(ExcludesTest, AddsOnTopAndStores)
{
    store.putExclude(L"C:\\old");
    visit.add()
        .entry(kFileEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), ""); })
        .enter(kFileEntry, L"C:\\new")
        .list([this](HWND dialog, const ListView& list) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("addToExcludes C:\\new"));
            EXPECT_THAT(list.rows(), ElementsAre("C:\\new", "C:\\old"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
            clickLater(dialog, IDOK);
        });
    EXPECT_EQ(visit.run(editExcludes), 0);
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
        .entry(kFileEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\b"); })
        .enter(kFileEntry, L"D:\\b")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("getExcludes 1", "updateExcludes 1 D:\\b"));
            EXPECT_THAT(list.rows(), ElementsAre("C:\\c", "D:\\b", "C:\\a"));
            EXPECT_THAT(list.allData(), ElementsAre(2, 1, 0));
        })
        .press(IDCANCEL);
    EXPECT_EQ(visit.run(editExcludes), 0);
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
        .enter(kFileEntry, L"C:\\b")
        .press(IDCANCEL);
    visit.run(editExcludes);
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
        .enter(kFileEntry, L"C:\\b")
        .press(IDCANCEL);
    visit.run(editExcludes);
    EXPECT_THAT(store.calls(), ElementsAre("getExcludes 0", "updateExcludes 0 C:\\b", "freeExcludes"));
}

TEST_F(ExcludesTest, ACancelledEntryChangesNothing)
{
    store.putExclude(L"C:\\a");
    visit.leaveEntries(kFileEntry)
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("getExcludes 0"));
            EXPECT_THAT(list.rows(), ElementsAre("C:\\a"));
        })
        .press(IDCANCEL);
    visit.run(editExcludes);
}

TEST_F(ExcludesTest, AnEmptyTextIsAnEntry)
{
    visit.add()
        .press(IDOK)
        .list([this](HWND, const ListView& list) {
            EXPECT_EQ(list.rowCount(), 1);
            EXPECT_EQ(store.takeCalls().size(), 1u);
        })
        .press(IDOK);
    visit.run(editExcludes);
    EXPECT_THAT(store.excludes.present(), ElementsAre(L""));
}

TEST_F(ExcludesTest, KeepsIndexesThroughRemovalsAndLaterEdits)
{
    store.putExclude(L"zero");
    visit.add()
        .enter(kFileEntry, L"one")
        .add()
        .enter(kFileEntry, L"two")
        .remove(1) // "one"
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("removeExcludes 1"));
            EXPECT_THAT(list.rows(), ElementsAre("two", "zero"));
            EXPECT_THAT(list.allData(), ElementsAre(2, 0));
        })
        .edit(0)
        .enter(kFileEntry, L"two again")
        .list([this](HWND, const ListView&) {
            EXPECT_THAT(store.takeCalls(), ElementsAre("getExcludes 2", "updateExcludes 2 two again"));
        })
        .press(IDOK);
    visit.run(editExcludes);
    EXPECT_THAT(store.excludes.present(), ElementsAre(L"zero", L"two again"));
}

TEST_F(ExcludesTest, ARowWhoseEntryIsGoneOpensAnEmptyDialog)
{
    store.putExclude(L"C:\\a");
    store.answer.updateExcludes = [](uint32_t, const wchar_t*) {
    };
    visit.list([this](HWND, const ListView&) { store.excludes.remove(0); })
        .edit(0)
        .entry(kFileEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), ""); })
        .press(IDCANCEL)
        .press(IDCANCEL);
    visit.run(editExcludes);
}

TEST_F(ExcludesTest, CutsWhatIsTypedAt259Characters)
{
    const auto enterLength = [this](size_t length) {
        visit.add().enter(kFileEntry, std::wstring(length, L'x'));
    };
    enterLength(259);
    enterLength(260);
    enterLength(10000);
    visit.press(IDOK);
    visit.run(editExcludes);
    const std::wstring longest(259, L'x');
    EXPECT_THAT(store.excludes.present(), ElementsAre(longest, longest, longest));
}

TEST_F(ExcludesTest, AStoredTextIsShownWholeAndCutByOkAlone)
{
    const std::wstring stored = L"C:\\" + std::wstring(9997, L'y');
    store.putExclude(stored.c_str());
    visit.edit(0)
        .entry(kFileEntry, [&](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), utf8(stored)); })
        .press(IDCANCEL)
        .list([&](HWND, const ListView& list) { EXPECT_EQ(list.cell(0, 0), stored); })
        .edit(0)
        .press(IDOK)
        .press(IDOK);
    visit.run(editExcludes);
    EXPECT_THAT(store.excludes.present(), ElementsAre(stored.substr(0, 259)));
}

TEST_F(ExcludesTest, BrowsesForAnyName)
{
    FileDialogs files;
    files.answer = L"C:\\pages\\not there yet.sys";
    visit.add()
        .entry(kFileEntry,
               [&](HWND entry) {
                   type(entry, IDC_ENTRY_TEXT, L"before");
                   click(entry, IDC_ENTRY_BROWSE);
                   EXPECT_EQ(files.asked, "save, All files, Exclude file");
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\pages\\not there yet.sys");

                   files.answer.clear();
                   click(entry, IDC_ENTRY_BROWSE);
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\pages\\not there yet.sys");
               })
        .press(IDOK)
        .press(IDOK);
    visit.run(editExcludes);
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
        .entry(kFileEntry, [](HWND entry) { click(entry, IDC_ENTRY_BROWSE); })
        .entry(kFileEntry,
               [this](HWND entry) {
                   EXPECT_THAT(store.takeCalls(), ElementsAre("ODS UI CRASH: eleDlg, MyDlgProc, 56\n"));
                   EXPECT_TRUE(isEnabled(entry, IDOK));
               })
        .enter(kFileEntry, L"C:\\typed")
        .press(IDOK);
    visit.run(editExcludes);
    EXPECT_THAT(store.excludes.present(), ElementsAre(L"C:\\typed"));
}

TEST_F(ExcludesTest, AnEntryDialogThatCannotBeShownIsACancelledOne)
{
    const HiddenDialog entry(IDD_EXCLUDE_ENTRY);
    visit.add()
        .list([this](HWND, const ListView& list) {
            EXPECT_EQ(list.rowCount(), 0);
            EXPECT_THAT(store.takeCalls(), IsEmpty());
        })
        .press(IDCANCEL);
    EXPECT_EQ(visit.run(editExcludes), 0);
}
