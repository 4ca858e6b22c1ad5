// The entry dialog of the backup tools, which hosts open by themselves too, and where its strings lie.
#include "tests/policies/backup_tools_test.h"

#include "tests/policies/file_dialogs.h"
#include "tests/support/hidden_dialog.h"
#include "tests/support/import_patch.h"
#include "tests/support/low_string.h"
#include "tests/support/text.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The exported entry dialog, with steps that work it.
struct BackupToolEntryTest : testing::Test {
    intptr_t open(const wchar_t* name)
    {
        return script.run([name] { return editBackupToolListEntry(nullptr, name); });
    }

    void enter(const wchar_t* text)
    {
        script.onDialog("enter", [text](HWND entry) {
            EXPECT_EQ(windowText(entry), kToolEntry);
            type(entry, IDC_ENTRY_TEXT, text);
            clickLater(entry, IDOK);
        });
    }

    RecordingStore store;
    DialogScript script;
};

/// The file name of the test program, by which the running processes know it.
std::wstring thisProgram()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::wstring(path).substr(std::wstring(path).rfind(L'\\') + 1);
}

const wchar_t* textAt(intptr_t address)
{
    return reinterpret_cast<const wchar_t*>(address);
}

int selectRowWith(HWND list, const wchar_t* text)
{
    LVFINDINFOW find{};
    find.flags = LVFI_STRING;
    find.psz = text;
    const auto row = static_cast<int>(
        SendMessageW(list, LVM_FINDITEMW, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&find)));
    ListView_SetItemState(list, row, LVIS_SELECTED, LVIS_SELECTED);
    return row;
}

// A heap at another place, for the strings that the library makes.
namespace high_heap {

constexpr size_t kSize = 0x10000;
constexpr UINT_PTR kAboveFourGiB = 0x2'1234'0000;
constexpr UINT_PTR kUpperHalfBelowFourGiB = 0x8123'0000;
UINT_PTR place = kAboveFourGiB;
void* block = nullptr;
int released = 0;

wchar_t* __cdecl duplicate(const wchar_t* text)
{
    for (UINT_PTR wanted = place; block == nullptr; wanted += 0x1000'0000) {
        block =
            VirtualAlloc(reinterpret_cast<void*>(wanted), kSize, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    }
    return std::wcscpy(static_cast<wchar_t*>(block), text);
}

void __cdecl release(void* given)
{
    if (given != nullptr && given == block) {
        ++released;
    } else {
        std::free(given);
    }
}

void giveBack()
{
    VirtualFree(block, 0, MEM_RELEASE);
    block = nullptr;
    place = kAboveFourGiB;
}

} // namespace high_heap

INT_PTR endCode = 0;
BOOL(WINAPI* reallyEnd)(HWND, INT_PTR) = nullptr;

BOOL WINAPI noteEnd(HWND dialog, INT_PTR code)
{
    endCode = code;
    return reallyEnd(dialog, code);
}

} // namespace

TEST_F(BackupToolEntryTest, StartsWithTheGivenTextAndGivesACopyThatTheCallerFrees)
{
    script.onDialog("look", [](HWND entry) {
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "C:\\given\\name.exe");
        clickLater(entry, IDOK);
    });
    const intptr_t result = open(L"C:\\given\\name.exe");
    const LowString text(result);
    EXPECT_EQ(result & 0xFFFFFFFF, result);
    EXPECT_STREQ(text.get(), L"name.exe");
    if (!hasRegionOfItsOwn(text.get())) {
        EXPECT_NE(_msize(text.get()), static_cast<size_t>(-1)) << "a block of the C runtime";
    }
}

TEST_F(BackupToolEntryTest, CancelAndTheCloseBoxGiveNothing)
{
    script.onDialog("cancel", [](HWND entry) { clickLater(entry, IDCANCEL); });
    EXPECT_EQ(open(L"x"), 0);
    DialogScript again;
    again.onDialog("close", [](HWND entry) { PostMessageW(entry, WM_CLOSE, 0, 0); });
    EXPECT_EQ(again.run([] { return editBackupToolListEntry(nullptr, nullptr); }), 0);
    EXPECT_THAT(store.calls(), IsEmpty());
}

TEST_F(BackupToolEntryTest, ADialogThatSomebodyElseEndsGivesNoText)
{
    script.onDialog("end it", [](HWND entry) { EndDialog(entry, IDCANCEL); });
    EXPECT_EQ(open(nullptr), 0);
}

TEST_F(BackupToolEntryTest, GivesMinusOneWhenItCannotBeShown)
{
    const HiddenDialog all;
    EXPECT_EQ(editBackupToolListEntry(nullptr, nullptr), -1);
}

TEST_F(BackupToolEntryTest, CutsAt259CharactersBeforeItLooksForTheTail)
{
    const std::wstring longName = std::wstring(300, L'n');
    enter(longName.c_str());
    EXPECT_EQ(std::wcslen(LowString(open(nullptr)).get()), 259u);

    // The last backslash is beyond what is read.
    const std::wstring longPath = L"C:\\" + std::wstring(300, L'd') + L"\\tool.exe";
    DialogScript again;
    again.onDialog("enter", [&](HWND entry) {
        type(entry, IDC_ENTRY_TEXT, longPath.c_str());
        clickLater(entry, IDOK);
    });
    const LowString tail(again.run([] { return editBackupToolListEntry(nullptr, nullptr); }));
    EXPECT_EQ(std::wstring(tail.get()), std::wstring(256, L'd'));
}

TEST_F(BackupToolEntryTest, BrowsesTheDisk)
{
    FileDialogs files;
    files.answer = L"D:\\Backup Suite\\tape drive.exe";
    script.onDialog("browse", [&](HWND entry) {
        click(entry, IDC_ENTRY_BROWSE);
        EXPECT_EQ(files.asked, "save, All files, Backup Processes");
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "tape drive.exe");
        files.answer.clear();
        click(entry, IDC_ENTRY_BROWSE);
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "tape drive.exe");
        clickLater(entry, IDOK);
    });
    EXPECT_STREQ(LowString(open(nullptr)).get(), L"tape drive.exe");
}

TEST_F(BackupToolEntryTest, BrowsesTheRunningProcesses)
{
    script.onDialog("browse", [](HWND entry) { clickLater(entry, IDC_ENTRY_BROWSE_RUNNING); });
    script.onDialog("choose this test", [](HWND chooser) {
        ASSERT_GE(selectRowWith(GetDlgItem(chooser, IDC_PROCESS_LIST), thisProgram().c_str()), 0);
        clickLater(chooser, IDOK);
    });
    script.onDialog("look, then browse in vain", [](HWND entry) {
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), utf8(thisProgram()));
        clickLater(entry, IDC_ENTRY_BROWSE_RUNNING);
    });
    script.onDialog("cancel", [](HWND chooser) {
        EXPECT_NE(GetDlgItem(chooser, IDC_PROCESS_LIST), nullptr);
        clickLater(chooser, IDCANCEL);
    });
    script.onDialog("press OK", [](HWND entry) { clickLater(entry, IDOK); });
    EXPECT_STREQ(LowString(open(L"other.exe")).get(), thisProgram().c_str());
}

TEST_F(BackupToolEntryTest, AProcessChooserThatCannotBeShownChoosesNothing)
{
    const HiddenDialog chooser(IDD_PROCESS_CHOOSER);
    script.onDialog("browse", [](HWND entry) {
        click(entry, IDC_ENTRY_BROWSE_RUNNING);
        EXPECT_EQ(controlText(entry, IDC_ENTRY_TEXT), "kept.exe");
        clickLater(entry, IDCANCEL);
    });
    EXPECT_EQ(open(L"kept.exe"), 0);
    EXPECT_THAT(store.lines(), IsEmpty());
}

TEST_F(BackupToolEntryTest, AFaultLeavesItOpen)
{
    FileDialogs files;
    const auto fault = [](OPENFILENAMEW*) -> BOOL {
        RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
        return TRUE;
    };
    const ImportPatch save(ImportPatch::corvane(), "GetSaveFileNameW",
                           static_cast<BOOL(WINAPI*)(OPENFILENAMEW*)>(fault));
    script.onDialog("browse", [](HWND entry) { click(entry, IDC_ENTRY_BROWSE); });
    enter(L"still here.exe");
    EXPECT_STREQ(LowString(open(nullptr)).get(), L"still here.exe");
    EXPECT_THAT(store.lines(), ElementsAre("UI CRASH: elpDlg, MyDlgProc, 74\n"));
}

TEST_F(BackupToolEntryTest, AnAddressThatLooksNegativeIsExtendedWithZeros)
{
    high_heap::place = high_heap::kUpperHalfBelowFourGiB;
    const ImportPatch duplicates(ImportPatch::corvane(), "_wcsdup", high_heap::duplicate);
    const ImportPatch releases(ImportPatch::corvane(), "free", high_heap::release);
    const ImportPatch ends(ImportPatch::corvane(), "EndDialog", noteEnd);
    reallyEnd = ends.original<BOOL WINAPI(HWND, INT_PTR)>();
    high_heap::released = 0;
    enter(L"C:\\Tools\\bk.exe");
    const intptr_t result = open(nullptr);
    EXPECT_GT(result, 0x7FFFFFFF);
    EXPECT_LE(result, 0xFFFFFFFF);
    EXPECT_EQ(textAt(result), high_heap::block);
    EXPECT_STREQ(textAt(result), L"bk.exe");
    EXPECT_EQ(endCode, result);
    EXPECT_EQ(high_heap::released, 0);
    high_heap::giveBack();
}

TEST_F(BackupToolEntryTest, TheNameOfAChosenProcessIsNotReleased)
{
    const ImportPatch duplicates(ImportPatch::corvane(), "_wcsdup", high_heap::duplicate);
    const ImportPatch releases(ImportPatch::corvane(), "free", high_heap::release);
    ASSERT_EQ(duplicates.count(), 1);
    ASSERT_EQ(releases.count(), 1);
    high_heap::released = 0;
    script.onDialog("browse", [](HWND entry) { clickLater(entry, IDC_ENTRY_BROWSE_RUNNING); });
    script.onDialog("choose this test", [](HWND chooser) {
        ASSERT_GE(selectRowWith(GetDlgItem(chooser, IDC_PROCESS_LIST), thisProgram().c_str()), 0);
        clickLater(chooser, IDOK);
    });
    script.onDialog("cancel", [](HWND entry) { clickLater(entry, IDCANCEL); });
    EXPECT_EQ(open(nullptr), 0);
    EXPECT_NE(high_heap::block, nullptr) << "the chooser made no copy of the name";
    EXPECT_EQ(high_heap::released, 0);
    high_heap::giveBack();
}

TEST_F(BackupToolEntryTest, StaysBelowFourGiBWhereTheHeapDoesNot)
{
    const ImportPatch duplicates(ImportPatch::corvane(), "_wcsdup", high_heap::duplicate);
    const ImportPatch releases(ImportPatch::corvane(), "free", high_heap::release);
    ASSERT_EQ(duplicates.count(), 1);
    ASSERT_EQ(releases.count(), 1);
    enter(L"C:\\high\\up.exe");
    const intptr_t result = open(nullptr);
    EXPECT_GT(reinterpret_cast<UINT_PTR>(high_heap::block), UINT_PTR{0xFFFFFFFF});
    ASSERT_NE(result, 0);
    ASSERT_EQ(result & 0xFFFFFFFF, result);
    EXPECT_STREQ(textAt(result), L"up.exe");
    EXPECT_EQ(high_heap::released, 1) << "the block above is no longer needed";

    // Told apart from a heap block, and released, as the header says.
    MEMORY_BASIC_INFORMATION region{};
    VirtualQuery(textAt(result), &region, sizeof region);
    EXPECT_EQ(region.AllocationBase, textAt(result));
    EXPECT_TRUE(VirtualFree(reinterpret_cast<void*>(result), 0, MEM_RELEASE));
    high_heap::giveBack();
}

TEST_F(BackupToolsTest, HandsHeapBlocksToTheStoreWhereverTheHeapIs)
{
    high_heap::released = 0;
    const ImportPatch duplicates(ImportPatch::corvane(), "_wcsdup", high_heap::duplicate);
    const void* handed = nullptr;
    store.answer.addToBackupTools = [&](const wchar_t* name) {
        handed = name;
        EXPECT_STREQ(name, L"up.exe");
        return 5u;
    };
    visit.add().enter(L"C:\\high\\up.exe").rows({"up.exe"}).data({5}).cancel();
    EXPECT_EQ(handed, high_heap::block);
    high_heap::giveBack();
}
