// After a change the row stands ready for the next command, and keys give the commands.
#include "res/resource.h"
#include "tests/policies/editor_case.h"
#include "tests/policies/editor_visit.h"
#include "tests/support/import_patch.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int kEntries = 60; // more than the list shows at once

struct ListEditorRowTest : testing::TestWithParam<EditorCase> {
    ListEditorRowTest()
    {
        void* const jane = store.account("zz jane");
        store.answer.getSidByNameW = [this, jane](const wchar_t*) {
            return store.answer.sidDup(jane);
        };
        for (int i = 0; i < kEntries; ++i) {
            editor.put(store, (L"entry " + std::to_wstring(100 + i)).c_str());
        }
    }

    /// Enters the text "zz jane" into whatever asks for an entry, and presses OK.
    EditorVisit& enter()
    {
        return visit.script.onDialog("enter",
                                     [](HWND dialog) {
                                         if (GetDlgItem(dialog, IDC_ENTRY_TEXT) != nullptr) {
                                             type(dialog, IDC_ENTRY_TEXT, L"zz jane");
                                         } else { // the account chooser
                                             click(dialog, IDC_CHOOSER_TYPE);
                                             type(dialog, IDC_CHOOSER_NAME, L"zz jane");
                                         }
                                         clickLater(dialog, IDOK);
                                     }),
               visit;
    }

    /// The row of an entry is the one that is selected, has the focus and can be seen.
    void expectReady(HWND dialog, const ListView& list, LPARAM index) const
    {
        ASSERT_EQ(list.selectedCount(), 1u);
        const int row = list.selected();
        EXPECT_EQ(list.data(row), index);
        EXPECT_EQ(list.text(row, 0), "zz jane");
        EXPECT_EQ(list.focused(), row);
        const int top = ListView_GetTopIndex(list.list());
        EXPECT_GE(row, top);
        EXPECT_LT(row, top + ListView_GetCountPerPage(list.list()));
        EXPECT_TRUE(isEnabled(dialog, IDC_POLICY_REMOVE));
        EXPECT_EQ(GetDlgCtrlID(focusOf(dialog)), editor.listId);
    }

    static void press(const ListView& list, WPARAM key) { PostMessageW(list.list(), WM_KEYDOWN, key, 0); }

    /// What stands in the list last, wherever that is.
    static void scrollAway(const ListView& list, int row) { ListView_EnsureVisible(list.list(), row, FALSE); }

    const EditorCase& editor = GetParam();
    PolicyStore store;
    EditorVisit visit{store, editor.open, {}, editor.listId};
};

} // namespace

TEST_P(ListEditorRowTest, AnAddedRowIsReadyForTheNextCommand)
{
    visit.list([this](HWND dialog, const ListView& list) {
        list.select(3);
        list.select(5);
        scrollAway(list, editor.sorted ? 0 : kEntries - 1);
        SetFocus(GetDlgItem(dialog, IDC_POLICY_ADD));
        clickLater(dialog, IDC_POLICY_ADD);
    });
    enter()
        .list([this](HWND dialog, const ListView& list) {
            SetFocus(list.list());
            expectReady(dialog, list, kEntries);
        })
        .cancel();
}

TEST_P(ListEditorRowTest, AnEditedRowIsReadyForTheNextCommand)
{
    LPARAM index = -1;
    visit.list([&index](HWND dialog, const ListView& list) {
        list.select(30);
        list.select(31);
        index = list.data(30);
        PostMessageW(dialog, WM_COMMAND, IDC_POLICY_EDIT, 0);
        scrollAway(list, 0);
    });
    enter()
        .list([&, this](HWND dialog, const ListView& list) {
            EXPECT_EQ(list.rowCount(), kEntries);
            expectReady(dialog, list, index);
        })
        .cancel();
}

TEST_P(ListEditorRowTest, KeysAddEditAndRemove)
{
    visit.list([](HWND, const ListView& list) {
        SetFocus(list.list());
        press(list, VK_INSERT);
    });
    enter().list([](HWND, const ListView& list) {
        EXPECT_EQ(list.rowCount(), kEntries + 1);
        list.selectOnly({2});
        press(list, VK_F2);
    });
    enter()
        .list([this](HWND dialog, const ListView& list) {
            EXPECT_EQ(list.rowCount(), kEntries + 1);
            EXPECT_EQ(list.text(list.selected(), 0), "zz jane");
            list.selectOnly({4});
            const std::string call = editor.call("remove") + " " + std::to_string(list.data(4));
            store.takeCalls();
            SendMessageW(list.list(), WM_KEYDOWN, VK_DELETE, 0);
            EXPECT_EQ(list.rowCount(), kEntries);
            EXPECT_THAT(store.takeCalls(), ElementsAre(call));
            EXPECT_FALSE(isEnabled(dialog, IDC_POLICY_REMOVE));
            // Nothing is selected any more.
            SendMessageW(list.list(), WM_KEYDOWN, VK_DELETE, 0);
            SendMessageW(list.list(), WM_KEYDOWN, VK_F2, 0);
            SendMessageW(list.list(), WM_KEYDOWN, VK_F3, 0);
            EXPECT_THAT(store.takeCalls(), IsEmpty());
        })
        .cancel();
}

TEST_P(ListEditorRowTest, AKeyHeldWithAnotherIsNoCommand)
{
    visit
        .list([this](HWND, const ListView& list) {
            list.selectOnly({4});
            store.takeCalls();
            for (const int held : {VK_SHIFT, VK_CONTROL, VK_MENU}) {
                static int heldKey;
                heldKey = held;
                const ImportPatch keys(
                    ImportPatch::corvane(), "GetKeyState",
                    +[](int key) -> SHORT { return key == heldKey ? SHORT(-128) : SHORT(0); });
                ASSERT_EQ(keys.count(), 1);
                SendMessageW(list.list(), WM_KEYDOWN, VK_DELETE, 0);
            }
            EXPECT_EQ(list.rowCount(), kEntries);
            EXPECT_THAT(store.takeCalls(), IsEmpty());
        })
        .cancel();
}

TEST_P(ListEditorRowTest, LooksAtTheSelectionOnlyWhenItChanges)
{
    static int enabled = 0;
    visit
        .list([](HWND, const ListView& list) {
            const ImportPatch enable(
                ImportPatch::corvane(), "EnableWindow", +[](HWND window, BOOL on) -> BOOL {
                    ++enabled;
                    return EnableWindow(window, on);
                });
            ASSERT_EQ(enable.count(), 1);
            enabled = 0;
            ListView_SetItemState(list.list(), 7, LVIS_FOCUSED, LVIS_FOCUSED);
            wchar_t text[] = L"other";
            LVITEMW item{};
            item.mask = LVIF_TEXT;
            item.pszText = text;
            SendMessageW(list.list(), LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
            EXPECT_EQ(enabled, 0);
            list.select(7);
            EXPECT_EQ(enabled, 2); // a missing button is asked for as well
        })
        .cancel();
}

TEST_P(ListEditorRowTest, DestroyedFromOutsideItGivesTheListBack)
{
    visit.list([this](HWND dialog, const ListView&) {
        store.takeCalls();
        DestroyWindow(dialog);
    });
    visit.run();
    EXPECT_THAT(store.calls(), ElementsAre(editor.call("free")));
}

TEST_P(ListEditorRowTest, DestroyedUnderItsEntryDialogItGivesTheListBackAndAddsNothing)
{
    visit.add();
    visit.script.onDialog("destroy what is behind", [this](HWND entry) {
        HWND editorWindow = GetWindow(entry, GW_OWNER);
        ASSERT_NE(editorWindow, nullptr);
        store.takeCalls();
        DestroyWindow(editorWindow);
    });
    visit.run();
    const std::vector<std::string> calls = store.calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), editor.call("free")), 1);
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const std::string& call) { return call.starts_with("addTo"); }),
              0);
}

TEST_P(ListEditorRowTest, AnEntryDialogThatIsDestroyedLeavesItUsable)
{
    visit.add();
    visit.script.onDialog("destroy it", [](HWND entry) { DestroyWindow(entry); });
    visit
        .list([this](HWND dialog, const ListView&) {
            EXPECT_EQ(windowText(dialog), editor.caption);
            EXPECT_TRUE(IsWindowEnabled(dialog));
        })
        .cancel();
}

TEST_P(ListEditorRowTest, CommandsSentPastAnEntryDialogAreNotTaken)
{
    visit.add();
    visit.script.onDialog("send commands to what is behind", [this](HWND entry) {
        HWND editorWindow = GetWindow(entry, GW_OWNER);
        store.takeCalls();
        for (const int id : {IDOK, IDCANCEL, IDC_POLICY_ADD, IDC_POLICY_EDIT, IDC_POLICY_REMOVE}) {
            SendMessageW(editorWindow, WM_COMMAND, static_cast<WPARAM>(id), 0);
        }
        PostMessageW(entry, WM_COMMAND, IDCANCEL, 0);
    });
    visit.list([](HWND dialog, const ListView&) {
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(visit.run(), 0);
    const std::vector<std::string> calls = store.calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), editor.call("free")), 1);
    EXPECT_EQ(calls.back(), editor.call("free"));
}

TEST_P(ListEditorRowTest, AFaultInThatIsTold)
{
    store.raise(editor.call("free"), Fault::kAccessViolation);
    visit.list([this](HWND dialog, const ListView&) {
        store.takeCalls();
        DestroyWindow(dialog);
    });
    visit.run();
    EXPECT_THAT(store.calls(), ElementsAre(editor.call("free"), std::string("ODS ") + editor.crashLine));
}

INSTANTIATE_TEST_SUITE_P(Editors, ListEditorRowTest, testing::ValuesIn(kEditors),
                         [](const auto& tested) { return tested.param.name; });
