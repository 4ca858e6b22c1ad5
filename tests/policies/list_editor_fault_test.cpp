// Faults in every store call of every list editor: one line with the editor's site, and the dialog goes on.
#include "res/resource.h"
#include "tests/policies/editor_case.h"
#include "tests/policies/editor_visit.h"
#include "tests/support/list_view.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>

using testing::ElementsAre;

namespace {

/// A store call, by its function and by how many calls to the function there were up to it.
struct StoreCall {
    std::string function;
    int nth;
};

struct ListEditorFaultTest : testing::TestWithParam<EditorCase> {
    /// One entry is added, one edited, one removed, and all is stored. What a fault takes away is left out: an
    /// entry dialog that did not open, a row that is not there.
    void visit(PolicyStore& store)
    {
        editor.put(store, L"one");
        editor.put(store, L"two");
        const EditorCase& shown = editor;
        void* const jane = store.account("jane");
        store.answer.getSidByNameW = [&store, jane](const wchar_t*) {
            return store.answer.sidDup(jane);
        };

        DialogScript script;
        const auto onList = [&](const char* what, EditorVisit::OnList act) {
            script.onDialog(what, [&shown, act](HWND dialog) {
                ASSERT_EQ(windowText(dialog), shown.caption);
                act(dialog, ListView(dialog, shown.listId));
            });
        };
        const auto enter = [&] {
            script.onDialog("enter", [&shown](HWND dialog) {
                if (windowText(dialog) == shown.caption) {
                    return; // the fault came before
                }
                if (GetDlgItem(dialog, IDC_ENTRY_TEXT) != nullptr) {
                    type(dialog, IDC_ENTRY_TEXT, L"entered");
                } else { // the account chooser
                    click(dialog, IDC_CHOOSER_TYPE);
                    type(dialog, IDC_CHOOSER_NAME, L"jane");
                }
                clickLater(dialog, IDOK);
            });
        };
        onList("add",
               [](HWND dialog, const ListView&) { PostMessageW(dialog, WM_COMMAND, IDC_POLICY_ADD, 0); });
        enter();
        onList("edit", [](HWND dialog, const ListView& list) {
            list.selectOnly({0});
            PostMessageW(dialog, WM_COMMAND, IDC_POLICY_EDIT, 0);
        });
        enter();
        onList("remove and store", [](HWND dialog, const ListView& list) {
            list.selectOnly({0});
            SendMessageW(dialog, WM_COMMAND, IDC_POLICY_REMOVE, 0);
            SendMessageW(dialog, WM_COMMAND, IDOK, 0);
            if (IsWindowVisible(dialog)) {
                EXPECT_TRUE(IsWindowEnabled(dialog));
                SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            }
        });
        EXPECT_EQ(script.run([&] { return editor.open(nullptr); }), 0);
    }

    /// The rows of the editor that is open, -1 when none is.
    int shownRows() const
    {
        for (HWND dialog : DialogScript::dialogs()) {
            if (windowText(dialog) == editor.caption) {
                return ListView(dialog, editor.listId).rowCount();
            }
        }
        return -1;
    }

    static std::vector<std::string> crashLines(const PolicyStore& store)
    {
        std::vector<std::string> lines = store.lines();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("UI CRASH"); });
        return lines;
    }

    /// The calls of a visit without faults, those that the account chooser makes for itself left out.
    std::vector<StoreCall> callsOfAVisit()
    {
        static const std::set<std::string> kOfTheChooser = {"getSidByNameW", "getDomainSid",
                                                            "getDomainServer", "sidDup", "ODS"};
        PolicyStore store;
        visit(store);
        EXPECT_THAT(crashLines(store), testing::IsEmpty());
        std::map<std::string, int> counts;
        std::vector<StoreCall> calls;
        for (const std::string& call : store.calls()) {
            const std::string function = call.substr(0, call.find(' '));
            if (!kOfTheChooser.contains(function)) {
                calls.push_back({function, ++counts[function]});
            }
        }
        return calls;
    }

    const EditorCase& editor = GetParam();
};

} // namespace

TEST_P(ListEditorFaultTest, AFaultInAnyStoreCallLeavesTheDialogAlive)
{
    const std::vector<StoreCall> calls = callsOfAVisit();
    ASSERT_GT(calls.size(), 8u);
    size_t kind = 0;
    for (const StoreCall& call : calls) {
        const Fault fault = kEveryFault[kind++ % std::size(kEveryFault)];
        SCOPED_TRACE(call.function + " " + std::to_string(call.nth) + ", " + faultName(fault));
        PolicyStore store;
        store.raise(call.function, fault, call.nth);
        visit(store);
        EXPECT_THAT(crashLines(store), ElementsAre(editor.crashLine));
        // However it went, the list was given back at the end; when that was what faulted, the dialog was still there
        // for a second try.
        const std::vector<std::string> made = store.calls();
        EXPECT_EQ(made.back(), editor.call("free"));
        EXPECT_EQ(std::count(made.begin(), made.end(), editor.call("free")),
                  call.function == editor.call("free") ? 2 : 1);
    }
}

TEST_P(ListEditorFaultTest, SurvivesADebugChannelThatFaultsToo)
{
    PolicyStore store;
    store.raise(editor.call("load"), Fault::kAccessViolation);
    store.raise("ODS", Fault::kAccessViolation);
    visit(store);
    EXPECT_THAT(crashLines(store), ElementsAre(editor.crashLine));
}

TEST_P(ListEditorFaultTest, TheListFollowsTheStoreExceptInARemoval)
{
    // Where a call fails, this is what is left to be seen.
    PolicyStore store;
    std::vector<std::string> seen;
    const auto watch = [&](const char* what, auto& answer) {
        answer = [this, &seen, what, call = answer](auto... arguments) {
            seen.push_back(what + std::to_string(shownRows()));
            return call(arguments...);
        };
    };
    StoreAnswers& answer = store.answer;
    watch("add ", answer.addToNotifications);
    watch("add ", answer.addToExcludes);
    watch("add ", answer.addToExcludeExts);
    watch("add ", answer.addToMgrAccounts);
    watch("add ", answer.addToBackupTools);
    watch("update ", answer.updateNotifications);
    watch("update ", answer.updateExcludes);
    watch("update ", answer.updateExcludeExts);
    watch("update ", answer.updateMgrAccounts);
    watch("update ", answer.updateBackupTools);
    watch("remove ", answer.removeNotifications);
    watch("remove ", answer.removeExcludes);
    watch("remove ", answer.removeExcludeExts);
    watch("remove ", answer.removeMgrAccounts);
    watch("remove ", answer.removeBackupTools);
    visit(store);
    EXPECT_THAT(seen, ElementsAre("add 2", "update 3", "remove 2"));
}

INSTANTIATE_TEST_SUITE_P(Editors, ListEditorFaultTest, testing::ValuesIn(kEditors),
                         [](const auto& tested) { return tested.param.name; });
