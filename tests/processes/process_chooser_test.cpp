// "Select program from list of running processes", through its export.
#include "tests/processes/process_chooser_test.h"

#include "tests/support/import_patch.h"
#include "tests/support/low_string.h"
#include "tests/support/nothing_left.h"
#include "tests/support/owner_window.h"

#include <commctrl.h>

#include <gmock/gmock.h>

#include <cstdlib>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(ProcessChooserTest, ListsEveryProcessByName)
{
    DialogScript script;
    script.onDialog("look and cancel", [](HWND dialog) {
        EXPECT_EQ(windowText(dialog), "Select program from list of running processes");
        // The item data tell the order in which the processes were found.
        EXPECT_THAT(rowsOf(dialog), ElementsAre("a.exe 4", "Explorer.exe 1", "notepad.exe 2",
                                                testing::AnyOf("services.exe 0", "services.exe 3"),
                                                testing::AnyOf("services.exe 0", "services.exe 3")));
        EXPECT_FALSE(isEnabled(dialog, IDOK));
        EXPECT_TRUE(isEnabled(dialog, IDCANCEL));
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ProcessChooserTest, PreparesTheList)
{
    DialogScript script;
    script.onDialog("look and cancel", [](HWND dialog) {
        const ListView list = listOf(dialog);
        EXPECT_THAT(list.columns(), ElementsAre("Process Name 310"));
        EXPECT_EQ(SendMessageW(list, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0), 0x4031);
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
}

TEST_F(ProcessChooserTest, GivesTheChosenName)
{
    DialogScript script;
    script.onDialog("select a row and press OK", [](HWND dialog) {
        listOf(dialog).select(2);
        EXPECT_TRUE(isEnabled(dialog, IDOK));
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "notepad.exe");
}

TEST_F(ProcessChooserTest, ADoubleClickIsOk)
{
    const auto doubleClick = [](HWND dialog) {
        NMITEMACTIVATE activation{};
        activation.hdr = {listOf(dialog), IDC_PROCESS_LIST, static_cast<UINT>(NM_DBLCLK)};
        SendMessageW(dialog, WM_NOTIFY, IDC_PROCESS_LIST, reinterpret_cast<LPARAM>(&activation));
    };
    DialogScript script;
    script
        .onDialog("double click beside the rows",
                  [=](HWND dialog) {
                      doubleClick(dialog);
                      EXPECT_TRUE(IsWindowVisible(dialog));
                  })
        .onDialog("double click a row", [=](HWND dialog) {
            EXPECT_FALSE(isEnabled(dialog, IDOK));
            listOf(dialog).select(2);
            doubleClick(dialog);
        });
    EXPECT_EQ(chosen(script), "notepad.exe");
}

TEST_F(ProcessChooserTest, LooksAtTheSelectionOnlyWhenItChanges)
{
    static int enabled = 0;
    const ImportPatch enable(
        ImportPatch::corvane(), "EnableWindow", +[](HWND window, BOOL on) -> BOOL {
            ++enabled;
            return EnableWindow(window, on);
        });
    ASSERT_EQ(enable.count(), 1);
    DialogScript script;
    script.onDialog("change what is no selection", [](HWND dialog) {
        enabled = 0;
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        wchar_t text[] = L"other";
        item.pszText = text;
        SendMessageW(listOf(dialog), LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        item.stateMask = item.state = LVIS_FOCUSED;
        SendMessageW(listOf(dialog), LVM_SETITEMSTATE, 1, reinterpret_cast<LPARAM>(&item));
        EXPECT_EQ(enabled, 0);
        listOf(dialog).select(1);
        EXPECT_EQ(enabled, 1);
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
}

TEST_F(ProcessChooserTest, EachOfTwoEqualNamesGivesTheSame)
{
    for (const int row : {3, 4}) {
        DialogScript script;
        script.onDialog("select a row and press OK", [row](HWND dialog) {
            listOf(dialog).select(row);
            clickLater(dialog, IDOK);
        });
        EXPECT_EQ(chosen(script), "services.exe");
    }
}

TEST_F(ProcessChooserTest, CannotBeOkWithoutASelection)
{
    DialogScript script;
    script.onDialog("select and unselect", [](HWND dialog) {
        listOf(dialog).select(0);
        EXPECT_TRUE(isEnabled(dialog, IDOK));
        listOf(dialog).select(0, false);
        EXPECT_FALSE(isEnabled(dialog, IDOK));
        // A program can send what a person cannot click.
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
}

TEST_F(ProcessChooserTest, ClosingGivesNull)
{
    DialogScript script;
    script.onDialog("select and close", [](HWND dialog) {
        listOf(dialog).select(0);
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
}

TEST_F(ProcessChooserTest, KeepsTheBackslashOfAFullPath)
{
    processes = {L"C:\\Tools\\backup.exe"};
    DialogScript script;
    script.onDialog("select and press OK", [](HWND dialog) {
        listOf(dialog).select(0);
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "\\backup.exe");
}

TEST_F(ProcessChooserTest, ABackupToolIsTheNameAfterTheBackslash)
{
    static std::vector<void*> released;
    released.clear();
    static wchar_t* copy = nullptr;
    const ImportPatch copies(
        ImportPatch::corvane(), "_wcsdup", +[](const wchar_t* text) {
            copy = _wcsdup(text);
            released.clear(); // a block that was released before may have come back as the copy
            return copy;
        });
    const ImportPatch releases(
        ImportPatch::corvane(), "free", +[](void* block) {
            released.push_back(block);
            std::free(block);
        });
    ASSERT_EQ(copies.count(), 1);
    ASSERT_EQ(releases.count(), 1);
    processes = {L"C:\\Tools\\backup.exe"};
    wchar_t* chosenName = nullptr;
    DialogScript script;
    script
        .onDialog("browse the running processes",
                  [](HWND entry) { clickLater(entry, IDC_ENTRY_BROWSE_RUNNING); })
        .onDialog("choose",
                  [](HWND dialog) {
                      EXPECT_THAT(rowsOf(dialog), ElementsAre("\\backup.exe 0"));
                      listOf(dialog).select(0);
                      clickLater(dialog, IDOK);
                  })
        .onDialog("look and press OK", [&](HWND entry) {
            EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "backup.exe");
            chosenName = copy;
            EXPECT_STREQ(chosenName, L"\\backup.exe");
            clickLater(entry, IDOK);
        });
    const intptr_t entered = script.run([] { return editBackupToolListEntry(nullptr, nullptr); });
    const LowString tool(entered);
    EXPECT_STREQ(tool.get(), L"backup.exe");
    // What the chooser gave is kept.
    EXPECT_THAT(released, testing::Not(Contains(static_cast<void*>(chosenName))));
    std::free(chosenName);
}

TEST_F(ProcessChooserTest, AProcessWithoutANameHasARow)
{
    processes = {L"a.exe", L"b.exe"};
    const auto nameless = [](HANDLE snapshot, PROCESSENTRY32W* entry) -> BOOL {
        const BOOL found = nextEntry(snapshot, entry);
        entry->dwSize = offsetof(PROCESSENTRY32W, szExeFile);
        return found;
    };
    functions.put("Process32FirstW", static_cast<BOOL(WINAPI*)(HANDLE, PROCESSENTRY32W*)>(nameless));
    DialogScript script;
    script.onDialog("choose it", [](HWND dialog) {
        EXPECT_THAT(rowsOf(dialog), ElementsAre(" 0", "b.exe 1"));
        listOf(dialog).select(0);
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), "");
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(ProcessChooserTest, CutsANameTo259Characters)
{
    processes = {std::wstring(300, L'n')}; // 260 fit into an entry
    DialogScript script;
    script.onDialog("select and press OK", [](HWND dialog) {
        EXPECT_THAT(rowsOf(dialog), ElementsAre(std::string(260, 'n') + " 0"));
        listOf(dialog).select(0);
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), std::string(259, 'n'));
}

TEST_F(ProcessChooserTest, SortsByTheColumnThatIsClicked)
{
    const auto names = [](HWND dialog) {
        std::vector<std::string> texts;
        for (const std::string& row : rowsOf(dialog)) {
            texts.push_back(row.substr(0, row.find(' ')));
        }
        return texts;
    };
    DialogScript script;
    script.onDialog("click the header", [&](HWND dialog) {
        NMLISTVIEW click{};
        click.hdr = {listOf(dialog), IDC_PROCESS_LIST, LVN_COLUMNCLICK};
        const auto clicked = [&](int column) {
            click.iSubItem = column;
            SendMessageW(dialog, WM_NOTIFY, IDC_PROCESS_LIST, reinterpret_cast<LPARAM>(&click));
            return names(dialog);
        };
        const auto upwards = names(dialog);
        std::vector<std::string> downwards(upwards.rbegin(), upwards.rend());
        // The order goes on from whatever list was sorted before.
        const auto first = clicked(0);
        EXPECT_TRUE(first == upwards || first == downwards);
        const auto second = first == upwards ? downwards : upwards;
        EXPECT_EQ(clicked(0), second);
        EXPECT_EQ(clicked(0), first);
        sortListCtrl(dialog, IDC_PROCESS_LIST, 0);
        EXPECT_EQ(names(dialog), second);
        EXPECT_EQ(clicked(0), first);  // one order for all lists
        EXPECT_EQ(clicked(-1), first); // no column
        click.hdr.idFrom = 999;
        EXPECT_EQ(clicked(0), first); // another list
        // Neither of the two counted as a click that turns the order round.
        click.hdr.idFrom = IDC_PROCESS_LIST;
        EXPECT_EQ(clicked(0), second);
        clickLater(dialog, IDCANCEL);
    });
    EXPECT_EQ(chosen(script), std::nullopt);
}

TEST_F(ProcessChooserTest, StandsOverTheCallersWindow)
{
    expectStandsOverItsOwner([](HWND owner) { EXPECT_EQ(chooseProcess(owner), nullptr); });
}

TEST_F(ProcessChooserTest, CountsRowsAnewEachTime)
{
    processes = {L"one.exe", L"two.exe"};
    for (int i = 0; i < 2; ++i) {
        DialogScript script;
        script.onDialog("look and cancel", [](HWND dialog) {
            EXPECT_THAT(rowsOf(dialog), ElementsAre("one.exe 0", "two.exe 1"));
            clickLater(dialog, IDCANCEL);
        });
        EXPECT_EQ(chosen(script), std::nullopt);
    }
}

TEST_F(ProcessChooserTest, OtherCommandsDoNothing)
{
    DialogScript script;
    script.onDialog("send them", [](HWND dialog) {
        for (const int id : {0, 3, IDC_PROCESS_LIST, 9999}) {
            SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(id), 0);
        }
        listOf(dialog).select(0);
        // By id, whatever the notification.
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, 5), 0);
    });
    EXPECT_EQ(chosen(script), "a.exe");
}

TEST_F(ProcessChooserTest, LeavesNothingBehind)
{
    expectNothingLeft([&] {
        DialogScript script;
        script.onDialog("select and press OK", [](HWND dialog) {
            listOf(dialog).select(1);
            clickLater(dialog, IDOK);
        });
        EXPECT_EQ(chosen(script), "Explorer.exe");
        store.takeCalls();
    });
}

TEST(ProcessChooserSystemTest, ListsTheRunningProcesses)
{
    RecordingStore store;
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::string self = utf8(std::wcsrchr(path, L'\\') + 1);
    DialogScript script;
    script.onDialog("choose this program", [&](HWND dialog) {
        const auto rows = rowsOf(dialog);
        const auto own = std::find_if(rows.begin(), rows.end(),
                                      [&](const std::string& row) { return row.starts_with(self + " "); });
        ASSERT_NE(own, rows.end());
        listOf(dialog).select(static_cast<int>(own - rows.begin()));
        clickLater(dialog, IDOK);
    });
    EXPECT_EQ(chosen(script), self);
}
