// Manage blocked extensions, and its entry dialog with the published account.
#include "corvane.h"
#include "res/resource.h"
#include "tests/policies/editor_visit.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <cstdlib>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct BlockedExtensionsTest : testing::Test {
    BlockedExtensionsTest()
    {
        visit.heeded = {"ExcludeExts", "getAccountBySidW", "CRASH"}; // not those of the chooser
        // What the chooser asks for a typed name.
        store.answer.getSidByNameW = [this](const wchar_t* name) {
            return sidDup(std::wstring_view(name) == L"jane"  ? jane
                          : std::wstring_view(name) == L"joe" ? joe
                                                              : nullptr);
        };
    }

    /// "Browse..." and the name of an account there.
    void choose(const wchar_t* name)
    {
        visit.entry([](HWND entry) { clickLater(entry, IDC_ENTRY_BROWSE); });
        visit.chooseByName(name);
    }

    void* sidDup(const void* sid) { return store.answer.sidDup(sid); }

    PolicyStore store;
    EditorVisit visit{store, editExcludeExts, "Blocked extension"};
    void* jane = store.account("jane");
    void* joe = store.account("joe");
};

} // namespace

TEST_F(BlockedExtensionsTest, ShowsForWhomEachMaskIsBlocked)
{
    store.putMask(L"*.mp3", nullptr);
    store.putMask(L"D:\\*.avi", jane);
    visit.rows({"D:\\*.avi|jane", "*.mp3|(All)"})
        .calls({"loadExcludeExts", "getExcludeExtsPath 0", "getExcludeExtsSid 0", "getExcludeExtsPath 1",
                "getExcludeExtsSid 1", "getAccountBySidW jane 128", "getExcludeExtsPath 2"})
        .cancel();
}

TEST_F(BlockedExtensionsTest, ANewEntryIsForAllUntilAnAccountIsChosen)
{
    store.putMask(L"*.mp3", jane);
    visit
        .edit(0) // leaves jane behind in the buffer
        .press(IDCANCEL)
        .add()
        .entry([](HWND entry) {
            EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "");
            EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "(All)");
            EXPECT_FALSE(isEnabled(entry, IDC_ENTRY_ACCOUNT));
        })
        .enter(L"*.iso")
        .calls({"addToExcludeExts *.iso null"})
        .rows({"*.iso|(All)", "*.mp3|jane"})
        .data({1, 0})
        .ok();
    EXPECT_THAT(visit.takeCalls(), ElementsAre("storeExcludeExts", "applyExcludeExts", "freeExcludeExts"));
    EXPECT_EQ(store.maskAccount(1), nullptr);
}

TEST_F(BlockedExtensionsTest, AddsForAChosenAccount)
{
    visit.add();
    choose(L"joe");
    visit
        .entry([](HWND entry) {
            EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "joe");
            EXPECT_FALSE(isEnabled(entry, IDC_ENTRY_ACCOUNT));
        })
        .enter(L"*.iso")
        .calls({"getAccountBySidW joe 128", "addToExcludeExts *.iso joe", "getAccountBySidW joe 128"})
        .rows({"*.iso|joe"})
        .cancel();
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "joe");
}

TEST_F(BlockedExtensionsTest, EditsMaskAndAccount)
{
    store.putMask(L"*.a", nullptr);
    store.putMask(L"*.b", jane);
    store.putMask(L"*.c", nullptr);
    visit.edit(1).shows("*.b").showsAccount("jane");
    choose(L"joe");
    visit.enter(L"*.bb")
        .calls({"getExcludeExtsSid 1", "getExcludeExtsPath 1", "getAccountBySidW jane 128",
                "getAccountBySidW joe 128", "updateExcludeExts 1 *.bb joe", "getAccountBySidW joe 128"})
        .rows({"*.c|(All)", "*.bb|joe", "*.a|(All)"})
        .data({2, 1, 0})
        .cancel();
}

TEST_F(BlockedExtensionsTest, AnyoneTurnsAnAccountBackIntoAll)
{
    store.putMask(L"*.b", jane);
    visit.edit(0);
    choose(L"Anyone");
    visit.showsAccount("(All)")
        .press(IDOK)
        .rows({"*.b|(All)"})
        .calls({"getExcludeExtsSid 0", "getExcludeExtsPath 0", "getAccountBySidW jane 128",
                "updateExcludeExts 0 *.b null"})
        .cancel();
    EXPECT_EQ(store.maskAccount(0), nullptr);
}

TEST_F(BlockedExtensionsTest, AnEntryForAllIsShownAndKeptForAll)
{
    store.putMask(L"*.a", nullptr);
    store.putMask(L"*.b", jane);
    visit
        .edit(0) // leaves jane behind in the buffer
        .showsAccount("jane")
        .press(IDOK)
        .edit(1)
        .shows("*.a")
        .showsAccount("(All)")
        .press(IDOK)
        .calls({"getExcludeExtsSid 0", "getExcludeExtsPath 0", "updateExcludeExts 0 *.a null"})
        .rows({"*.b|jane", "*.a|(All)"})
        .cancel();
}

TEST_F(BlockedExtensionsTest, ACancelledChooserLeavesTheAccount)
{
    store.putMask(L"*.b", jane);
    visit.edit(0)
        .entry([](HWND entry) { clickLater(entry, IDC_ENTRY_BROWSE); })
        .chooseNobody()
        .showsAccount("jane")
        .press(IDOK)
        .cancel();
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "jane");
}

TEST_F(BlockedExtensionsTest, AChooserThatCannotBeShownLeavesTheAccount)
{
    store.putMask(L"*.b", jane);
    store.putMask(L"*.c", jane);
    visit.edit(0);
    choose(L"joe");
    visit.press(IDOK)
        .edit(1)
        .entry([](HWND entry) {
            const HiddenDialog chooser(IDD_CHOOSER);
            const std::string before = controlText(entry, IDC_ENTRY_ACCOUNT);
            click(entry, IDC_ENTRY_BROWSE);
            EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), before)
                << "not the account that was chosen last";
            EXPECT_EQ(before, "jane");
        })
        .press(IDCANCEL)
        .cancel();
}

TEST_F(BlockedExtensionsTest, ACancelledEntryChangesNothingWhateverWasChosen)
{
    store.putMask(L"*.b", jane);
    visit.edit(0);
    choose(L"joe");
    visit.press(IDCANCEL).rows({"*.b|jane"}).forget().edit(0).showsAccount("jane").press(IDOK).ok();
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "jane");
}

TEST_F(BlockedExtensionsTest, AnAccountWithoutANameShowsNone)
{
    store.putMask(L"*.b", store.unknownAccount());
    visit.rows({"*.b|"}).edit(0).showsAccount("").press(IDOK).cancel();
    EXPECT_NE(store.maskAccount(0), nullptr) << "the account is lost";
}

TEST_F(BlockedExtensionsTest, TheLongestSidFits)
{
    constexpr BYTE kMost = 255; // sub-authorities that one byte can count
    std::vector<unsigned char> sid(8 + kMost * 4u, 0x11);
    sid[0] = SID_REVISION;
    sid[1] = kMost;
    store.putMask(L"*.b", nullptr);
    store.answer.getExcludeExtsSid = [&](uint32_t) {
        return sid.data();
    };
    std::vector<unsigned char> updated;
    store.answer.updateExcludeExts = [&](uint32_t, const wchar_t*, const void* account) {
        const auto* const bytes = static_cast<const unsigned char*>(account);
        updated.assign(bytes, bytes + sid.size());
    };
    visit.edit(0).press(IDOK).cancel();
    EXPECT_EQ(updated, sid);
}

TEST_F(BlockedExtensionsTest, MasksAreCutAt259Characters)
{
    visit.add().enter(std::wstring(10000, L'?')).ok();
    EXPECT_THAT(store.masks.present(), ElementsAre(std::wstring(259, L'?')));
}

TEST_F(BlockedExtensionsTest, AFaultWhileNamingTheAccountOfARowKeepsTheRowsBefore)
{
    store.putMask(L"*.a", nullptr);
    store.putMask(L"*.b", jane);
    store.putMask(L"*.c", nullptr);
    store.raise("getAccountBySidW", Fault::kAccessViolation);
    visit
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(store.lines(), ElementsAre("UI CRASH: exclextDlg, MyDlgProc, 191\n"));
            EXPECT_EQ(list.rows().back(), "*.a|(All)");
            EXPECT_LT(list.rowCount(), 3);
        })
        .ok();
    EXPECT_THAT(store.masks.present(), ElementsAre(L"*.a", L"*.b", L"*.c")) << "the store's list is whole";
}

TEST_F(BlockedExtensionsTest, AFaultWhileNamingTheAccountOfANewRowIsTheEditors)
{
    store.raise("getAccountBySidW", Fault::kAccessViolation, 2); // 1: in the entry dialog
    visit.add();
    choose(L"jane");
    visit.enter(L"*.b")
        .list([this](HWND, const ListView&) {
            EXPECT_THAT(store.lines(), testing::Contains("UI CRASH: exclextDlg, MyDlgProc, 191\n"));
        })
        .cancel();
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "jane");
}

TEST_F(BlockedExtensionsTest, AFaultWhileTheEntryOpensIsItsOwn)
{
    store.putMask(L"*.b", jane);
    store.raise("getAccountBySidW", Fault::kAccessViolation, 2); // 1: the row
    visit.edit(0)
        .entry([this](HWND entry) {
            EXPECT_THAT(store.lines(), ElementsAre("UI CRASH: eleextDlg, MyDlgProc, 80\n"));
            EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "*.b");
        })
        .press(IDOK)
        .cancel();
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "jane");
}

TEST_F(BlockedExtensionsTest, AFaultAfterChoosingKeepsTheChoice)
{
    store.putMask(L"*.b", nullptr);
    store.raise("getAccountBySidW", Fault::kCppException);
    visit.edit(0);
    choose(L"jane");
    visit
        .entry([this](HWND) {
            EXPECT_THAT(store.lines(), testing::Contains("UI CRASH: eleextDlg, MyDlgProc, 80\n"));
        })
        .press(IDOK)
        .rows({"*.b|jane"})
        .cancel();
}
