// The tools of these tests, where a mistake in them could make a test pass that should fail.
#include "corvane.h"
#include "store/lornix.h"
#include "tests/support/dialog_script.h"
#include "tests/support/faulting_call.h"
#include "tests/support/import_patch.h"
#include "tests/support/leak_count.h"
#include "tests/support/list_host.h"
#include "tests/support/nothing_left.h"
#include "tests/support/recording_store.h"
#include "tests/support/rule_memory.h"
#include "tests/support/window_text.h"

#include <commctrl.h>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <cstdlib>
#include <vector>

using testing::ElementsAre;

namespace {

std::wstring modulePath(const wchar_t* name)
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(GetModuleHandleW(name), path, MAX_PATH);
    return path;
}

std::wstring folderOf(const std::wstring& path)
{
    return path.substr(0, path.find_last_of(L'\\'));
}

int WINAPI boxOfTheTest(HWND, const char*, const char*, UINT)
{
    return IDOK;
}

} // namespace

TEST(RecordingStoreTest, IsTheStoreThatTheLibraryCalls)
{
    ListHost host;
    EXPECT_EQ(countItems2(host.object()), 0);
    ASSERT_NE(GetModuleHandleW(L"lornix"), nullptr);
    ASSERT_NE(GetModuleHandleW(L"corvane"), nullptr);
    EXPECT_EQ(folderOf(modulePath(L"lornix")), folderOf(modulePath(nullptr)));
    EXPECT_EQ(folderOf(modulePath(L"corvane")), folderOf(modulePath(nullptr)));
}

TEST(RecordingStoreTest, WritesCallsDownInOrder)
{
    RecordingStore store;
    void* const alice = store.account("alice");
    store.answer.getRealSize = [](const wchar_t*) -> int64_t {
        return 42;
    };
    EXPECT_EQ(getRealSize(L"C:\\data"), 42);
    wchar_t name[128] = L"";
    EXPECT_EQ(getAccountBySidW(alice, name, 128), name);
    EXPECT_STREQ(name, L"alice");
    ODS("%s %ls %d\n", "narrow", L"wide", 7);
    SidList* list = createEmptySidList();
    list = appendToSidList(list, sidDup(alice));
    EXPECT_EQ(getRealSizeByOwner(L"C:\\data", list), 0);
    EXPECT_EQ(store.openSidLists(), 1);
    freeSidList(list);
    EXPECT_EQ(store.openSidLists(), 0);
    EXPECT_THAT(store.calls(),
                ElementsAre("getRealSize C:\\data", "getAccountBySidW alice 128", "ODS narrow wide 7\n",
                            "createEmptySidList", "sidDup alice", "appendToSidList [] alice",
                            "getRealSizeByOwner C:\\data [alice]", "freeSidList [alice]"));
    EXPECT_THAT(store.lines(), ElementsAre("narrow wide 7\n"));
}

TEST(RecordingStoreTest, RaisesWhatIsPlannedAtTheCallThatIsPlanned)
{
    RecordingStore store;
    const auto measure = [] {
        getRealSize(L"C:\\data");
    };
    for (const Fault fault : kEveryFault) {
        store.raise("getRealSize", fault, 2);
        EXPECT_EQ(faultOf(measure), 0u) << faultName(fault);
        const DWORD raised = faultOf(measure);
        switch (fault) {
        case Fault::kAccessViolation:
            EXPECT_EQ(raised, EXCEPTION_ACCESS_VIOLATION);
            break;
        case Fault::kDivideByZero:
            EXPECT_EQ(raised, EXCEPTION_INT_DIVIDE_BY_ZERO);
            break;
        case Fault::kCppException:
            EXPECT_EQ(raised, kCppException);
            break;
        default:
            EXPECT_NE(raised, 0u);
            EXPECT_NE(raised, kCppException);
        }
        EXPECT_EQ(faultOf(measure), 0u) << faultName(fault);
    }
}

TEST(RecordingStoreTest, ComplainsAboutAFaultThatNeverCame)
{
    EXPECT_NONFATAL_FAILURE(
        {
            RecordingStore store;
            store.raise("getRealSize", Fault::kAccessViolation);
        },
        "never raised");
}

TEST(RecordingStoreTest, ComplainsAboutEqualPointersToCompare)
{
    RecordingStore store;
    void* const alice = store.account("alice");
    EXPECT_NONFATAL_FAILURE(sidcmp(alice, alice), "equal pointers");
}

TEST(DialogScriptTest, SeesAndAnswersABox)
{
    DialogScript script;
    script.answerBox("Text", "Caption");
    EXPECT_EQ(script.run([] { return MessageBoxA(nullptr, "Text", "Caption", MB_OK); }), IDOK);
    EXPECT_EQ(script.boxOwner(), nullptr);
}

TEST(DialogScriptTest, ComplainsAboutAnIcon)
{
    DialogScript script;
    script.answerBox("Text", "Caption");
    EXPECT_NONFATAL_FAILURE(
        script.run([] { return MessageBoxA(nullptr, "Text", "Caption", MB_OK | MB_ICONERROR); }), "icon");
}

TEST(DialogScriptTest, ComplainsAboutADialogThatNeverComes)
{
    DialogScript script;
    script.onDialog("press OK", [](HWND) {});
    EXPECT_NONFATAL_FAILURE(script.run([] { return 0; }), "press OK");
}

TEST(DialogScriptTest, NamesTheStepThatItIsStuckAt)
{
    DialogScript script;
    script.patience(5).step("never done", [](HWND) { return false; });
    EXPECT_NONFATAL_FAILURE(script.run([] { return MessageBoxA(nullptr, "text", "caption", MB_OKCANCEL); }),
                            "stuck at the step: never done; open: \"caption\"");
}

TEST(DialogScriptTest, WaitsForASlowMachineAsLongAsItGetsOn)
{
    DialogScript script;
    script.patience(5);
    for (int step = 0; step < 4; ++step) {
        script.step("slow", [tries = 0](HWND) mutable {
            Sleep(20);
            return ++tries == 3;
        });
    }
    script.step("close", [](HWND front) { return EndDialog(front, IDOK) != FALSE; });
    EXPECT_EQ(script.run([] { return MessageBoxA(nullptr, "text", "caption", MB_OK); }), IDOK);
}

TEST(ImportPatchTest, ReplacesAnImportAndPutsItBack)
{
    const HMODULE self = GetModuleHandleW(nullptr);
    {
        const ImportPatch patch(self, "MessageBoxA", boxOfTheTest);
        EXPECT_EQ(patch.count(), 1);
        EXPECT_EQ(MessageBoxA(nullptr, "Text", "Caption", MB_OK), IDOK); // would wait for ever
    }
    DialogScript script;
    script.answerBox("Text", "Caption");
    EXPECT_EQ(script.run([] { return MessageBoxA(nullptr, "Text", "Caption", MB_OK); }), IDOK);
}

TEST(ImportPatchTest, CountsNothingForAFunctionThatIsNotImported)
{
    EXPECT_EQ(ImportPatch(ImportPatch::corvane(), "NoSuchFunction", boxOfTheTest).count(), 0);
}

TEST(LeakCountTest, SeesOneOfEachKind)
{
    const auto makeWindow = [] {
        return CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    };
    const HWND first = makeWindow(); // brings helpers of the system that go with it
    LeakCount::now();
    const LeakCount before = LeakCount::now();
    // Small ones come from lists that some runtimes count as one block.
    void* volatile const block = std::malloc(40000);
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HWND window = makeWindow();
    const LeakCount held = LeakCount::now();
    EXPECT_GE(held.heapBlocks, before.heapBlocks + 1);
    EXPECT_EQ(held.gdiObjects, before.gdiObjects + 1);
    EXPECT_EQ(held.handles, before.handles + 1);
    EXPECT_EQ(held.windows, before.windows + 1);
    DestroyWindow(window);
    CloseHandle(event);
    DeleteObject(brush);
    std::free(block);
    EXPECT_EQ(LeakCount::now(), before);
    DestroyWindow(first);
}

TEST(NothingLeftTest, ACacheThatFillsLateIsNoLeak)
{
    int round = 0;
    HBRUSH cached = nullptr;
    expectNothingLeft([&] {
        if (++round == 5) {
            cached = CreateSolidBrush(RGB(1, 2, 3));
        }
    });
    DeleteObject(cached);
}

TEST(NothingLeftTest, WhatGrowsAgainAndAgainIs)
{
    std::vector<HBRUSH> kept;
    int round = 0;
    const auto keepOneInAWhile = [&] {
        if (++round % 8 == 0) {
            kept.push_back(CreateSolidBrush(RGB(1, 2, 3)));
        }
    };
    EXPECT_NONFATAL_FAILURE(expectNothingLeft(keepOneInAWhile), "held around each");
    for (HBRUSH brush : kept) {
        DeleteObject(brush);
    }
}

TEST(RuleMemoryTest, GivesAddressesOnBothSides)
{
    EXPECT_TRUE(rule_memory::isAbove4GiB(rule_memory::above4GiB()));
    EXPECT_FALSE(rule_memory::isAbove4GiB(rule_memory::below4GiB()));
    EXPECT_NE(rule_memory::above4GiB(), rule_memory::above4GiB());
}

TEST(ListHostTest, ReadsWhatStandsInTheRows)
{
    ListHost host;
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = 50;
    for (int i = 0; i < 2; ++i) {
        SendMessageW(host.list(), LVM_INSERTCOLUMNW, static_cast<WPARAM>(i),
                     reinterpret_cast<LPARAM>(&column));
    }
    host.addRow(7, {L"a", L"b"});
    host.addRow(8, {L"c", L"d"});
    EXPECT_THAT(host.rows(), ElementsAre("a|b", "c|d"));
    EXPECT_THAT(host.column(1), ElementsAre("b", "d"));
    EXPECT_EQ(host.data(1), 8);
}
