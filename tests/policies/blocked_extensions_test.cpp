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

constexpr char kMaskEntry[] = "Blocked extension";

struct BlockedExtensionsTest : testing::Test {
    BlockedExtensionsTest()
    {
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
        visit.entry(kMaskEntry, [](HWND entry) { clickLater(entry, IDC_ENTRY_BROWSE); });
        visit.chooseByName(name);
    }

    void* sidDup(const void* sid) { return store.answer.sidDup(sid); }

    /// The calls to the list itself and to account names, without those of the chooser.
    std::vector<std::string> ownCalls()
    {
        std::vector<std::string> own;
        for (std::string& call : store.takeCalls()) {
            if (call.find("ExcludeExts") != std::string::npos || call.starts_with("getAccountBySidW") ||
                call.find("CRASH") != std::string::npos)
            {
                own.push_back(std::move(call));
            }
        }
        return own;
    }

    PolicyStore store;
    EditorVisit visit{store};
    void* jane = store.account("jane");
    void* joe = store.account("joe");
};

} // namespace

TEST_F(BlockedExtensionsTest, ShowsForWhomEachMaskIsBlocked)
{
    store.putMask(L"*.mp3", nullptr);
    store.putMask(L"D:\\*.avi", jane);
    visit
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(list.rows(), ElementsAre("D:\\*.avi|jane", "*.mp3|(All)"));
            EXPECT_THAT(store.takeCalls(),
                        ElementsAre("loadExcludeExts", "getExcludeExtsPath 0", "getExcludeExtsSid 0",
                                    "getExcludeExtsPath 1", "getExcludeExtsSid 1",
                                    "getAccountBySidW jane 128", "getExcludeExtsPath 2"));
        })
        .press(IDCANCEL);
    EXPECT_EQ(visit.run(editExcludeExts), 0);
}

TEST_F(BlockedExtensionsTest, ANewEntryIsForAllUntilAnAccountIsChosen)
{
    store.putMask(L"*.mp3", jane);
    visit
        .edit(0) // leaves jane behind in the buffer
        .press(IDCANCEL)
        .add()
        .entry(kMaskEntry,
               [](HWND entry) {
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "");
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "(All)");
                   EXPECT_FALSE(isEnabled(entry, IDC_ENTRY_ACCOUNT));
               })
        .enter(kMaskEntry, L"*.iso")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), ElementsAre("addToExcludeExts *.iso null"));
            EXPECT_THAT(list.rows(), ElementsAre("*.iso|(All)", "*.mp3|jane"));
            EXPECT_THAT(list.allData(), ElementsAre(1, 0));
        })
        .press(IDOK);
    EXPECT_EQ(visit.run(editExcludeExts), 0);
    EXPECT_THAT(ownCalls(), ElementsAre("storeExcludeExts", "applyExcludeExts", "freeExcludeExts"));
    EXPECT_EQ(store.maskAccount(1), nullptr);
}

TEST_F(BlockedExtensionsTest, AddsForAChosenAccount)
{
    visit.add();
    choose(L"joe");
    visit
        .entry(kMaskEntry,
               [](HWND entry) {
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "joe");
                   EXPECT_FALSE(isEnabled(entry, IDC_ENTRY_ACCOUNT));
               })
        .enter(kMaskEntry, L"*.iso")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), ElementsAre("getAccountBySidW joe 128", "addToExcludeExts *.iso joe",
                                                "getAccountBySidW joe 128"));
            EXPECT_THAT(list.rows(), ElementsAre("*.iso|joe"));
        })
        .press(IDCANCEL);
    visit.run(editExcludeExts);
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "joe");
}

TEST_F(BlockedExtensionsTest, EditsMaskAndAccount)
{
    store.putMask(L"*.a", nullptr);
    store.putMask(L"*.b", jane);
    store.putMask(L"*.c", nullptr);
    visit.edit(1).entry(kMaskEntry, [](HWND entry) {
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "*.b");
        EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "jane");
    });
    choose(L"joe");
    visit.enter(kMaskEntry, L"*.bb")
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), ElementsAre("getExcludeExtsSid 1", "getExcludeExtsPath 1",
                                                "getAccountBySidW jane 128", "getAccountBySidW joe 128",
                                                "updateExcludeExts 1 *.bb joe", "getAccountBySidW joe 128"));
            EXPECT_THAT(list.rows(), ElementsAre("*.c|(All)", "*.bb|joe", "*.a|(All)"));
            EXPECT_THAT(list.allData(), ElementsAre(2, 1, 0));
        })
        .press(IDCANCEL);
    visit.run(editExcludeExts);
}

TEST_F(BlockedExtensionsTest, AnyoneTurnsAnAccountBackIntoAll)
{
    store.putMask(L"*.b", jane);
    visit.edit(0);
    choose(L"Anyone");
    visit.entry(kMaskEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "(All)"); })
        .press(IDOK)
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(list.rows(), ElementsAre("*.b|(All)"));
            EXPECT_THAT(ownCalls(), ElementsAre("getExcludeExtsSid 0", "getExcludeExtsPath 0",
                                                "getAccountBySidW jane 128", "updateExcludeExts 0 *.b null"));
        })
        .press(IDCANCEL);
    visit.run(editExcludeExts);
    EXPECT_EQ(store.maskAccount(0), nullptr);
}

TEST_F(BlockedExtensionsTest, AnEntryForAllIsShownAndKeptForAll)
{
    store.putMask(L"*.a", nullptr);
    store.putMask(L"*.b", jane);
    visit
        .edit(0) // leaves jane behind in the buffer
        .entry(kMaskEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "jane"); })
        .press(IDOK)
        .edit(1)
        .entry(kMaskEntry,
               [](HWND entry) {
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "*.a");
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "(All)");
               })
        .press(IDOK)
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(ownCalls(), ElementsAre("getExcludeExtsSid 0", "getExcludeExtsPath 0",
                                                "updateExcludeExts 0 *.a null"));
            EXPECT_THAT(list.rows(), ElementsAre("*.b|jane", "*.a|(All)"));
        })
        .press(IDCANCEL);
    visit.run(editExcludeExts);
}

TEST_F(BlockedExtensionsTest, ACancelledChooserLeavesTheAccount)
{
    store.putMask(L"*.b", jane);
    visit.edit(0)
        .entry(kMaskEntry, [](HWND entry) { clickLater(entry, IDC_ENTRY_BROWSE); })
        .entry("Choose subject", [](HWND chooser) { clickLater(chooser, IDCANCEL); })
        .entry(kMaskEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "jane"); })
        .press(IDOK)
        .press(IDCANCEL);
    visit.run(editExcludeExts);
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
        .entry(kMaskEntry,
               [](HWND entry) {
                   const HiddenDialog chooser(IDD_CHOOSER);
                   const std::string before = controlText(entry, IDC_ENTRY_ACCOUNT);
                   click(entry, IDC_ENTRY_BROWSE);
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), before)
                       << "not the account that was chosen last";
                   EXPECT_EQ(before, "jane");
               })
        .press(IDCANCEL)
        .press(IDCANCEL);
    visit.run(editExcludeExts);
}

TEST_F(BlockedExtensionsTest, ACancelledEntryChangesNothingWhateverWasChosen)
{
    store.putMask(L"*.b", jane);
    visit.edit(0);
    choose(L"joe");
    visit.press(IDCANCEL)
        .list([this](HWND, const ListView& list) {
            EXPECT_THAT(list.rows(), ElementsAre("*.b|jane"));
            store.takeCalls();
        })
        .edit(0)
        .entry(kMaskEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), "jane"); })
        .press(IDOK)
        .press(IDOK);
    visit.run(editExcludeExts);
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "jane");
}

TEST_F(BlockedExtensionsTest, AnAccountWithoutANameShowsNone)
{
    store.putMask(L"*.b", store.unknownAccount());
    visit.list([](HWND, const ListView& list) { EXPECT_THAT(list.rows(), ElementsAre("*.b|")); })
        .edit(0)
        .entry(kMaskEntry, [](HWND entry) { EXPECT_EQ(controlText(entry, IDC_ENTRY_ACCOUNT), ""); })
        .press(IDOK)
        .press(IDCANCEL);
    visit.run(editExcludeExts);
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
    visit.edit(0).press(IDOK).press(IDCANCEL);
    visit.run(editExcludeExts);
    EXPECT_EQ(updated, sid);
}

TEST_F(BlockedExtensionsTest, MasksAreCutAt259Characters)
{
    visit.add().enter(kMaskEntry, std::wstring(10000, L'?')).press(IDOK);
    visit.run(editExcludeExts);
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
        .press(IDOK);
    EXPECT_EQ(visit.run(editExcludeExts), 0);
    EXPECT_THAT(store.masks.present(), ElementsAre(L"*.a", L"*.b", L"*.c")) << "the store's list is whole";
}

TEST_F(BlockedExtensionsTest, AFaultWhileNamingTheAccountOfANewRowIsTheEditors)
{
    store.raise("getAccountBySidW", Fault::kAccessViolation, 2); // 1: in the entry dialog
    visit.add();
    choose(L"jane");
    visit.enter(kMaskEntry, L"*.b")
        .list([this](HWND, const ListView&) {
            EXPECT_THAT(store.lines(), testing::Contains("UI CRASH: exclextDlg, MyDlgProc, 191\n"));
        })
        .press(IDCANCEL);
    EXPECT_EQ(visit.run(editExcludeExts), 0);
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "jane");
}

TEST_F(BlockedExtensionsTest, AFaultWhileTheEntryOpensIsItsOwn)
{
    store.putMask(L"*.b", jane);
    store.raise("getAccountBySidW", Fault::kAccessViolation, 2); // 1: the row
    visit.edit(0)
        .entry(kMaskEntry,
               [this](HWND entry) {
                   EXPECT_THAT(store.lines(), ElementsAre("UI CRASH: eleextDlg, MyDlgProc, 80\n"));
                   EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "*.b");
               })
        .press(IDOK)
        .press(IDCANCEL);
    EXPECT_EQ(visit.run(editExcludeExts), 0);
    EXPECT_EQ(RecordingStore::nameOf(store.maskAccount(0)), "jane");
}

TEST_F(BlockedExtensionsTest, AFaultAfterChoosingKeepsTheChoice)
{
    store.putMask(L"*.b", nullptr);
    store.raise("getAccountBySidW", Fault::kCppException);
    visit.edit(0);
    choose(L"jane");
    visit
        .entry(kMaskEntry,
               [this](HWND) {
                   EXPECT_THAT(store.lines(), testing::Contains("UI CRASH: eleextDlg, MyDlgProc, 80\n"));
               })
        .press(IDOK)
        .list([](HWND, const ListView& list) { EXPECT_THAT(list.rows(), ElementsAre("*.b|jane")); })
        .press(IDCANCEL);
    visit.run(editExcludeExts);
}
