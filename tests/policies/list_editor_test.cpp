// What all five list editors do alike: opening, selecting, removing, sorting, storing, surviving.
#include "res/resource.h"
#include "tests/policies/editor_case.h"
#include "tests/support/dialog_script.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/list_view.h"
#include "tests/support/nothing_left.h"
#include "tests/support/owner_window.h"
#include "tests/support/text.h"
#include "tests/support/window_text.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr int kManyEntries = 10000;

struct ListEditorTest : testing::TestWithParam<EditorCase> {
    ListView list(HWND dialog) const { return {dialog, editor.listId}; }

    void put(const std::vector<const wchar_t*>& texts)
    {
        for (const wchar_t* text : texts) {
            editor.put(store, text);
        }
    }

    /// Opens the editor, looks at it, and closes it with Cancel.
    intptr_t look(DialogScript::Act act)
    {
        DialogScript script;
        script.onDialog("look", [act](HWND dialog) {
            act(dialog);
            clickLater(dialog, IDCANCEL);
        });
        return script.run([this] { return editor.open(nullptr); });
    }

    std::vector<std::string> withCells(std::vector<std::string> texts) const
    {
        for (std::string& text : texts) {
            text += editor.moreCells;
        }
        return texts;
    }

    /// Whether the buttons for a selected row are enabled; both must agree.
    bool selectionButtons(HWND dialog) const
    {
        const bool remove = isEnabled(dialog, IDC_POLICY_REMOVE);
        if (editor.hasEditButton) {
            EXPECT_EQ(isEnabled(dialog, IDC_POLICY_EDIT), remove);
        }
        return remove;
    }

    const EditorCase& editor = GetParam();
    PolicyStore store;
};

std::vector<std::string> joined(std::vector<std::string> first, const std::vector<std::string>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::vector<std::string> iconRequests;
HMODULE(WINAPI* realGetModuleHandle)(LPCWSTR) = nullptr;
const auto kQuotaModule = reinterpret_cast<HMODULE>(UINT_PTR{0x12340000});

HMODULE WINAPI moduleOfTheTest(LPCWSTR name)
{
    return name != nullptr && std::wstring_view(name) == L"quota" ? kQuotaModule : realGetModuleHandle(name);
}

HICON WINAPI iconOfTheTest(HINSTANCE module, LPCWSTR icon)
{
    iconRequests.push_back((module == kQuotaModule ? "quota " : "other ") +
                           std::to_string(reinterpret_cast<UINT_PTR>(icon)));
    return nullptr;
}

} // namespace

TEST_P(ListEditorTest, ShowsItsColumnsAndStyles)
{
    look([this](HWND dialog) {
        EXPECT_EQ(windowText(dialog), editor.caption);
        const ListView window = list(dialog);
        EXPECT_THAT(window.columns(), ElementsAreArray(editor.columns));
        EXPECT_EQ(ListView_GetExtendedListViewStyle(window),
                  static_cast<DWORD>(LVS_EX_GRIDLINES | LVS_EX_HEADERDRAGDROP | LVS_EX_FULLROWSELECT |
                                     LVS_EX_LABELTIP));
        const auto style = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE));
        EXPECT_EQ(style & LVS_TYPEMASK, static_cast<DWORD>(LVS_REPORT));
        EXPECT_EQ((style & LVS_SORTASCENDING) != 0, editor.sorted);
        EXPECT_NE(style & LVS_SHOWSELALWAYS, 0u);
        EXPECT_EQ(controlText(dialog, IDC_POLICY_ADD), "Add...");
        EXPECT_EQ(controlText(dialog, IDC_POLICY_REMOVE), editor.removeButton);
        EXPECT_EQ(GetDlgItem(dialog, IDC_POLICY_EDIT) != nullptr, editor.hasEditButton);
    });
}

TEST_P(ListEditorTest, ColumnsAreAsWideAsTheScreensDotsPerInchAskFor)
{
    const ImportPatch screen(
        ImportPatch::corvane(), "GetDeviceCaps", +[](HDC, int what) { return what == LOGPIXELSX ? 144 : 0; });
    ASSERT_EQ(screen.count(), 1);
    std::vector<std::string> wider = editor.columns;
    for (std::string& column : wider) {
        size_t digits = 0;
        const size_t at = column.find_first_of("0123456789");
        const int width = std::stoi(column.substr(at), &digits);
        column.replace(at, digits, std::to_string(width * 3 / 2));
    }
    look([&](HWND dialog) { EXPECT_THAT(list(dialog).columns(), ElementsAreArray(wider)); });
}

TEST_P(ListEditorTest, AsksTheHostForIconsBeforeItLoads)
{
    iconRequests.clear();
    const ImportPatch icons(ImportPatch::corvane(), "LoadIconW", iconOfTheTest);
    const ImportPatch modules(ImportPatch::corvane(), "GetModuleHandleW", moduleOfTheTest);
    realGetModuleHandle = modules.original<HMODULE WINAPI(LPCWSTR)>();
    std::vector<std::string> seenByLoad;
    const auto load = [&seenByLoad] {
        seenByLoad = iconRequests;
        return 1;
    };
    store.answer.loadNotifications = load;
    store.answer.loadExcludes = load;
    store.answer.loadExcludeExts = load;
    store.answer.loadMgrAccounts = load;
    store.answer.loadBackupTools = load;
    look([](HWND) {});
    EXPECT_THAT(seenByLoad, ElementsAre("quota 138", "quota 139", "quota 140"));
    EXPECT_EQ(iconRequests, seenByLoad);
}

TEST_P(ListEditorTest, ShowsAnEmptyStoreWithoutButtonsToPress)
{
    EXPECT_EQ(look([this](HWND dialog) {
                  EXPECT_EQ(list(dialog).rowCount(), 0);
                  EXPECT_FALSE(selectionButtons(dialog));
                  EXPECT_TRUE(isEnabled(dialog, IDC_POLICY_ADD));
                  EXPECT_THAT(store.takeCalls(), ElementsAreArray(editor.opening(0)));
              }),
              0);
    EXPECT_THAT(store.calls(), ElementsAre(editor.call("free")));
}

TEST_P(ListEditorTest, ShowsTheEntriesWithTheirIndexes)
{
    put({L"beta", L"Alpha", L"gamma"});
    look([this](HWND dialog) {
        if (editor.sorted) {
            EXPECT_THAT(list(dialog).rows(), ElementsAreArray(withCells({"Alpha", "beta", "gamma"})));
            EXPECT_THAT(list(dialog).allData(), ElementsAre(1, 0, 2));
        } else {
            EXPECT_THAT(list(dialog).rows(), ElementsAreArray(withCells({"gamma", "Alpha", "beta"})));
            EXPECT_THAT(list(dialog).allData(), ElementsAre(2, 1, 0));
        }
        EXPECT_FALSE(selectionButtons(dialog));
    });
    EXPECT_THAT(store.calls(), ElementsAreArray(joined(editor.opening(3), {editor.call("free")})));
}

TEST_P(ListEditorTest, StoresOnOkAlsoWithoutChanges)
{
    put({L"one"});
    DialogScript script;
    script.onDialog("press OK", [this](HWND dialog) {
        store.takeCalls();
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(script.run([this] { return editor.open(nullptr); }), 0);
    EXPECT_THAT(store.calls(), ElementsAreArray(editor.storing()));
}

TEST_P(ListEditorTest, ClosesLikeCancelAndStoresNothing)
{
    put({L"one", L"two"});
    const auto close = {WM_CLOSE, WM_COMMAND};
    for (const int message : close) {
        DialogScript script;
        script.onDialog("remove and close", [this, message](HWND dialog) {
            list(dialog).selectOnly({0});
            click(dialog, IDC_POLICY_REMOVE);
            store.takeCalls();
            PostMessageW(dialog, static_cast<UINT>(message), message == WM_COMMAND ? IDCANCEL : 0, 0);
        });
        EXPECT_EQ(script.run([this] { return editor.open(nullptr); }), 0);
        EXPECT_THAT(store.takeCalls(), ElementsAre(editor.call("free")));
    }
}

TEST_P(ListEditorTest, EnablesItsButtonsWhileARowIsSelected)
{
    put({L"one", L"two"});
    look([this](HWND dialog) {
        list(dialog).select(1);
        EXPECT_TRUE(selectionButtons(dialog));
        list(dialog).select(1, false);
        EXPECT_FALSE(selectionButtons(dialog));
    });
}

TEST_P(ListEditorTest, RemovesTheFirstSelectedRowAndLeavesTheOthersTheirIndexes)
{
    put({L"aa", L"bb", L"cc", L"dd"});
    look([this](HWND dialog) {
        const ListView rows = list(dialog);
        const int first = editor.sorted ? 1 : 2; // the row of the second entry
        ASSERT_EQ(rows.data(first), 1);
        rows.selectOnly({first});
        store.takeCalls();
        click(dialog, IDC_POLICY_REMOVE);
        EXPECT_THAT(store.takeCalls(), ElementsAre(editor.call("remove") + " 1"));
        EXPECT_THAT(rows.allData(), ElementsAreArray(editor.sorted ? std::vector<LPARAM>{0, 2, 3}
                                                                   : std::vector<LPARAM>{3, 2, 0}));

        // Of several selected rows the first one alone.
        rows.select(-1, false);
        rows.select(1);
        rows.select(2);
        click(dialog, IDC_POLICY_REMOVE);
        EXPECT_THAT(store.takeCalls(), ElementsAre(editor.call("remove") + " 2"));
        EXPECT_THAT(rows.allData(),
                    ElementsAreArray(editor.sorted ? std::vector<LPARAM>{0, 3} : std::vector<LPARAM>{3, 0}));
    });
}

TEST_P(ListEditorTest, KeepsTheKeyboardWhenTheButtonThatHadItIsDisabled)
{
    put({L"one", L"two"});
    look([this](HWND dialog) {
        const ListView rows = list(dialog);
        rows.selectOnly({0});
        ASSERT_NE(focusOf(dialog), nullptr);
        SetFocus(GetDlgItem(dialog, IDC_POLICY_REMOVE));
        click(dialog, IDC_POLICY_REMOVE);
        EXPECT_FALSE(isEnabled(dialog, IDC_POLICY_REMOVE));
        EXPECT_EQ(GetDlgCtrlID(focusOf(dialog)), editor.listId);
    });
}

TEST_P(ListEditorTest, DoesNothingWithoutASelection)
{
    put({L"one"});
    look([this](HWND dialog) {
        store.takeCalls();
        // The buttons are disabled; the commands come all the same from elsewhere.
        SendMessageW(dialog, WM_COMMAND, IDC_POLICY_REMOVE, 0);
        SendMessageW(dialog, WM_COMMAND, IDC_POLICY_EDIT, 0);
        list(dialog).doubleClick();
        EXPECT_THAT(store.takeCalls(), IsEmpty());
        EXPECT_EQ(list(dialog).rowCount(), 1);
    });
}

TEST_P(ListEditorTest, SortsByAClickedColumn)
{
    put({L"b", L"c", L"a"});
    look([this](HWND dialog) {
        const ListView rows = list(dialog);
        const auto firstColumn = [&rows] {
            std::string texts;
            for (int i = 0; i < rows.rowCount(); ++i) {
                texts += rows.text(i, 0);
            }
            return texts;
        };
        const std::string before = firstColumn();
        rows.clickColumn(-1);
        EXPECT_EQ(firstColumn(), before);

        // The order that a list was sorted in last is the process's: the first click may give either.
        rows.clickColumn(0);
        const std::string first = firstColumn();
        rows.clickColumn(0);
        const std::string second = firstColumn();
        EXPECT_TRUE((first == "abc" && second == "cba") || (first == "cba" && second == "abc"))
            << first << ' ' << second;
        // Item data goes with its row.
        EXPECT_EQ(rows.data(second == "abc" ? 0 : 2), 2);
    });
}

TEST_P(ListEditorTest, SortsByARealClickOnTheHeader)
{
    put({L"b", L"c", L"a"});
    look([this](HWND dialog) {
        const ListView rows = list(dialog);
        rows.clickColumn(0);
        const std::wstring before = rows.cell(0, 0);
        const HWND header = ListView_GetHeader(rows.list());
        SendMessageW(header, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 5));
        SendMessageW(header, WM_LBUTTONUP, 0, MAKELPARAM(20, 5));
        EXPECT_NE(rows.cell(0, 0), before);
    });
}

TEST_P(ListEditorTest, GivesMinusOneWhenItCannotBeShown)
{
    const HiddenDialog all;
    EXPECT_EQ(editor.open(nullptr), -1);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_P(ListEditorTest, ShowsTextsOfAnyLengthWhole)
{
    for (const size_t length : {259u, 260u, 10000u}) {
        editor.put(store,
                   (std::wstring(1, L'a' + static_cast<wchar_t>(length % 7)) + std::wstring(length - 1, L'x'))
                       .c_str());
    }
    look([this](HWND dialog) {
        std::vector<size_t> lengths;
        for (int row = 0; row < 3; ++row) {
            lengths.push_back(list(dialog).cell(row, 0).size());
        }
        EXPECT_THAT(lengths, testing::UnorderedElementsAre(259u, 260u, 10000u));
    });
}

TEST_P(ListEditorTest, ShowsTenThousandEntries)
{
    for (int i = 0; i < kManyEntries; ++i) {
        editor.put(store, (L"entry " + std::to_wstring(i * 7919 % kManyEntries)).c_str());
    }
    look([this](HWND dialog) {
        const ListView rows = list(dialog);
        ASSERT_EQ(rows.rowCount(), kManyEntries);
        std::vector<LPARAM> data = rows.allData();
        if (editor.sorted) {
            for (int row = 1; row < kManyEntries; ++row) {
                ASSERT_LE(lstrcmpiW(rows.cell(row - 1, 0).c_str(), rows.cell(row, 0).c_str()), 0) << row;
            }
        } else {
            EXPECT_EQ(data.front(), kManyEntries - 1);
        }
        std::sort(data.begin(), data.end());
        for (int i = 0; i < kManyEntries; ++i) {
            ASSERT_EQ(data[static_cast<size_t>(i)], i);
        }
        EXPECT_NE(GetWindowLongPtrW(rows.list(), GWL_STYLE) & WS_VISIBLE, 0) << "redrawing is still off";
    });
}

TEST_P(ListEditorTest, StandsOverTheCallersWindow)
{
    expectStandsOverItsOwner([this](HWND owner) { EXPECT_EQ(editor.open(owner), 0); });
}

TEST_P(ListEditorTest, HoldsNothingAfterItIsClosed)
{
    put({L"one", L"two"});
    expectNothingLeft([this] {
        look([this](HWND dialog) { list(dialog).selectOnly({0}); });
        store.takeCalls();
    });
}

INSTANTIATE_TEST_SUITE_P(Editors, ListEditorTest, testing::ValuesIn(kEditors),
                         [](const auto& tested) { return tested.param.name; });
