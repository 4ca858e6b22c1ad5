// Commands that a person does not give by a click: by other ids, with other notifications, on several rows at once.
#include "res/resource.h"
#include "tests/policies/editor_case.h"
#include "tests/policies/editor_visit.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

using testing::IsEmpty;

namespace {

struct ListEditorCommandsTest : testing::TestWithParam<EditorCase> {
    ListEditorCommandsTest()
    {
        for (const wchar_t* text : {L"aa", L"bb", L"cc", L"dd"}) {
            editor.put(store, text);
        }
    }

    const EditorCase& editor = GetParam();
    PolicyStore store;
    EditorVisit visit{store, editor.open, {}, editor.listId};
};

/// The editors with an entry dialog of their own; the others have the account chooser.
class EntryCommandsTest : public ListEditorCommandsTest {};

std::vector<EditorCase> editorsWithEntry()
{
    std::vector<EditorCase> editors;
    std::copy_if(kEditors.begin(), kEditors.end(), std::back_inserter(editors),
                 [](const EditorCase& each) { return each.hasEditButton; });
    return editors;
}

/// What the dialog's own procedure answers; the window gives another result.
INT_PTR answerOf(HWND dialog, UINT message, WPARAM wParam = 0)
{
    const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog, DWLP_DLGPROC));
    return procedure(dialog, message, wParam, 0);
}

void sendStrangeCommands(HWND dialog)
{
    for (const int id : {0, 7, IDC_POLICY_LIST, IDC_NOTIFICATIONS_LIST, 9999}) {
        EXPECT_EQ(answerOf(dialog, WM_COMMAND, static_cast<WPARAM>(id)), TRUE) << id;
    }
}

} // namespace

TEST_P(ListEditorCommandsTest, OtherIdsDoNothing)
{
    visit
        .list([this](HWND dialog, const ListView& list) {
            list.selectOnly({1});
            store.takeCalls();
            sendStrangeCommands(dialog);
            EXPECT_EQ(answerOf(dialog, WM_DESTROY), TRUE);
            EXPECT_EQ(answerOf(dialog, WM_SIZE), FALSE);
            EXPECT_THAT(store.takeCalls(), IsEmpty());
            EXPECT_EQ(list.rowCount(), 4);
        })
        .cancel();
}

TEST_P(ListEditorCommandsTest, TheIdCountsWhateverTheNotification)
{
    visit.list([this](HWND dialog, const ListView& list) {
        list.selectOnly({1});
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_POLICY_REMOVE, 5), 0);
        EXPECT_EQ(list.rowCount(), 3);
        store.takeCalls();
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, 5), 0);
    });
    EXPECT_EQ(visit.run(), 0);
    EXPECT_EQ(store.calls(), editor.storing());
}

TEST_P(ListEditorCommandsTest, EditsTheFirstOfSeveralSelectedRows)
{
    const int index = editor.sorted ? 1 : 2;
    visit
        .list([this](HWND dialog, const ListView& list) {
            list.select(-1, false);
            list.select(3);
            list.select(1);
            store.takeCalls();
            PostMessageW(dialog, WM_COMMAND, IDC_POLICY_EDIT, 0);
        })
        .press(IDCANCEL)
        .list([this, index](HWND, const ListView&) {
            const std::vector<std::string> calls = store.takeCalls();
            ASSERT_THAT(calls, testing::Not(IsEmpty()));
            EXPECT_THAT(calls.front(), testing::EndsWith(" " + std::to_string(index)));
        })
        .cancel();
}

TEST_P(EntryCommandsTest, OtherIdsDoNothingInTheEntryDialog)
{
    visit.add();
    visit.script.onDialog("in the entry dialog", [this](HWND entry) {
        ASSERT_NE(GetDlgItem(entry, IDC_ENTRY_TEXT), nullptr);
        type(entry, IDC_ENTRY_TEXT, L"typed");
        store.takeCalls();
        sendStrangeCommands(entry);
        EXPECT_THAT(store.takeCalls(), IsEmpty());
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "typed");
        clickLater(entry, IDCANCEL);
    });
    visit.cancel();
}

INSTANTIATE_TEST_SUITE_P(Editors, EntryCommandsTest, testing::ValuesIn(editorsWithEntry()),
                         [](const auto& tested) { return tested.param.name; });
INSTANTIATE_TEST_SUITE_P(Editors, ListEditorCommandsTest, testing::ValuesIn(kEditors),
                         [](const auto& tested) { return tested.param.name; });
